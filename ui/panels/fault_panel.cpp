#include "ui/panels/fault_panel.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QClipboard>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QTimer>
#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

#include "center/grid/columns.h"
#include "exchange/template_columns.h"
#include "ui/look/list_table.h"
#include "ui/look/one_line.h"
#include "ui/look/qt_text.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace {

// The source is told once something has been reported from elsewhere.
enum Field { kRow, kColumn, kValue, kReason, kSource, kFieldCount };
constexpr int kRowWidth = 60;
constexpr int kNameWidth = 160;
constexpr int kReadingMilliseconds = 0;  // once the events that are due have run

QString Heading(int field) {
    static const QStringList headings = {QStringLiteral("行"), QStringLiteral("列"), QStringLiteral("内容"),
                                         QStringLiteral("原因"), QStringLiteral("来源")};
    return headings.value(field);
}

QString Number(std::int32_t number) {
    return number > 0 ? QString::number(number) : QString();
}

QString SourceOf(const center::ReportedFault& fault) {
    QString source = ToQt(fault.source);
    switch (fault.kind) {
        case center::FaultSource::Workbook:
            return QFileInfo(source).fileName();
        case center::FaultSource::Vouchers:
            return QStringLiteral("凭证（%1）").arg(source);
        case center::FaultSource::Template:
            break;
    }
    return source;
}

QString TextOfReported(const center::ReportedFault& reported, int field) {
    const store::LineFault& fault = reported.fault;
    switch (field) {
        case kRow:
            return Number(fault.row);
        case kColumn: {
            QString header = ToSentence(fault.header);
            if (fault.column == 0 || reported.kind == center::FaultSource::Template) return header;
            return header + QStringLiteral("（%1 列）").arg(ToQt(exchange::ColumnLetter(fault.column)));
        }
        case kValue:
            return ToQtLine(fault.value);
        case kReason:
            return ToSentence(fault.reason);
        default:
            return SourceOf(reported);
    }
}

}  // namespace

// Cells as they were read, and behind them what has been reported; what is said of a cell is asked for when
// it is shown, sorted by or copied.
class FaultModel : public QAbstractTableModel {
  public:
    FaultModel(center::FaultActions& actions, QObject* parent)
        : QAbstractTableModel(parent), actions_(actions) {}

    void Read() {
        beginResetModel();
        cells_ = GuardedOr(std::vector<center::CellAddress>(), [&] { return actions_.Cells(); });
        faults_.assign(cells_.size(), std::nullopt);
        reported_ = GuardedOr(std::vector<center::ReportedFault>(), [&] { return actions_.Reported(); });
        Order();
        endResetModel();
    }
    // Of one of the two there is something.
    std::optional<center::CellAddress> CellAt(int row) const {
        const std::size_t index = IndexAt(row);
        return index < cells_.size() ? std::optional(cells_[index]) : std::nullopt;
    }
    std::optional<std::size_t> ReportedAt(int row) const {
        const std::size_t index = IndexAt(row);
        return index < cells_.size() ? std::nullopt : std::optional(index - cells_.size());
    }
    const center::ReportedFault& Reported(std::size_t place) const { return reported_[place]; }

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(order_.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override {
        if (parent.isValid()) return 0;
        return reported_.empty() ? static_cast<int>(kSource) : static_cast<int>(kFieldCount);
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole)) return {};
        const QString text = TextOf(IndexAt(index.row()), index.column());
        return role == Qt::ToolTipRole ? ToolTipText(text) : text;
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
        return Heading(section);
    }
    void sort(int field, Qt::SortOrder order) override {
        beginResetModel();
        sortedBy_ = field;
        descending_ = order == Qt::DescendingOrder;
        Order();
        endResetModel();
    }

  private:
    std::size_t IndexAt(int row) const { return order_[static_cast<std::size_t>(row)]; }
    QString TextOf(std::size_t index, int field) const {
        if (index >= cells_.size()) return TextOfReported(reported_[index - cells_.size()], field);
        const center::CellAddress cell = cells_[index];
        if (field == kRow) return QString::number(cell.row);
        const center::Fault& fault = FaultAt(index);
        switch (field) {
            case kColumn: {
                const QString header = ToQt(center::Column(cell.column).header);
                return fault.hidden ? header + QStringLiteral("（隐藏列）") : header;
            }
            case kValue:
                return ToQtLine(fault.value);
            case kReason:
                return ToSentence(fault.reason);
            default:
                return QStringLiteral("当前模板");
        }
    }
    // Rows and columns of the grid come before those of sheets.
    std::pair<bool, int> NumberOf(std::size_t index, int field) const {
        if (index < cells_.size()) return {false, field == kRow ? cells_[index].row : cells_[index].column};
        const store::LineFault& fault = reported_[index - cells_.size()].fault;
        return {true, field == kRow ? fault.row : fault.column};
    }
    const center::Fault& FaultAt(std::size_t index) const {
        std::optional<center::Fault>& fault = faults_[index];
        if (!fault) fault = GuardedOr(center::Fault(), [&] { return actions_.Describe(cells_[index]); });
        return *fault;
    }
    void Order() {
        order_.resize(cells_.size() + reported_.size());
        std::iota(order_.begin(), order_.end(), std::size_t{0});
        const auto less = [&](std::size_t a, std::size_t b) {
            switch (sortedBy_) {
                case kRow:
                case kColumn:
                    return NumberOf(a, sortedBy_) < NumberOf(b, sortedBy_);
                default:
                    return TextOf(a, sortedBy_) < TextOf(b, sortedBy_);
            }
        };
        std::stable_sort(order_.begin(), order_.end(),
                         [&](std::size_t a, std::size_t b) { return descending_ ? less(b, a) : less(a, b); });
    }

    center::FaultActions& actions_;
    std::vector<center::CellAddress> cells_;
    std::vector<center::ReportedFault> reported_;
    mutable std::vector<std::optional<center::Fault>> faults_;
    std::vector<std::size_t> order_;
    int sortedBy_ = kRow;
    bool descending_ = false;
};

FaultPanel::FaultPanel(center::FaultActions& actions, QWidget* parent)
    : QDockWidget(QStringLiteral("异常列表"), parent),
      actions_(actions),
      model_(new FaultModel(actions, this)),
      table_(new QTableView(this)) {
    setObjectName(QStringLiteral("faultPanel"));
    setFeatures(DockWidgetClosable);
    setAllowedAreas(Qt::BottomDockWidgetArea);
    table_->setObjectName(QStringLiteral("lstFaults"));
    table_->setAccessibleName(QStringLiteral("异常列表"));
    table_->setModel(model_);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSortingEnabled(true);
    table_->sortByColumn(kRow, Qt::AscendingOrder);
    table_->setWordWrap(false);
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 6);
    table_->setMinimumHeight(HeightOfOneRow(*table_));
    table_->horizontalHeader()->setSectionResizeMode(kReason, QHeaderView::Stretch);
    table_->setColumnWidth(kRow, kRowWidth);
    table_->setColumnWidth(kColumn, kNameWidth);
    table_->setColumnWidth(kValue, kNameWidth);
    table_->setTabKeyNavigation(false);
    table_->installEventFilter(this);
    setWidget(table_);
    connect(table_, &QTableView::clicked, this, [this](const QModelIndex& index) {
        // Who gathers rows to copy them stays with the list.
        const bool gathers =
            (QApplication::keyboardModifiers() & (Qt::ControlModifier | Qt::ShiftModifier)) != 0;
        if (!gathers) GoTo(index);
    });
    table_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(table_, &QTableView::customContextMenuRequested, this, &FaultPanel::ShowMenu);
    hide();
}

FaultPanel::~FaultPanel() = default;

void FaultPanel::Refresh() {
    if (!isVisible() || std::exchange(waiting_, true)) return;
    QTimer::singleShot(kReadingMilliseconds, this, [this] {
        waiting_ = false;
        if (isVisible()) Read();
    });
}

void FaultPanel::Read() {
    const int before = model_->columnCount();
    model_->Read();
    if (before < model_->columnCount()) table_->setColumnWidth(kSource, kNameWidth);
}

void FaultPanel::showEvent(QShowEvent* event) {
    QDockWidget::showEvent(event);
    Read();
}

void FaultPanel::GoTo(const QModelIndex& index) {
    if (!index.isValid()) return;
    Guarded([&] {
        if (const auto cell = model_->CellAt(index.row())) {
            actions_.GoTo(*cell);
        } else if (const auto place = model_->ReportedAt(index.row())) {
            // A copy: the list may be another one by the time a message is closed.
            const center::ReportedFault fault = model_->Reported(*place);
            actions_.OpenReported(fault);
        }
    });
}

void FaultPanel::GoToCurrent() {
    GoTo(table_->currentIndex());
}

// What has been reported goes off the list; a faulty cell stays there until it is mended.
void FaultPanel::DropRows() {
    std::vector<std::size_t> places;
    for (const QModelIndex& index : table_->selectionModel()->selectedRows()) {
        if (const auto place = model_->ReportedAt(index.row())) places.push_back(*place);
    }
    if (places.empty()) return;
    actions_.DropReported(places);
    Read();
}

std::string FaultPanel::CurrentWorkbook() const {
    const QModelIndex current = table_->currentIndex();
    const auto place = current.isValid() ? model_->ReportedAt(current.row()) : std::nullopt;
    if (!place || model_->Reported(*place).kind != center::FaultSource::Workbook) return {};
    return model_->Reported(*place).source;
}

void FaultPanel::SaveMarkedCopy() {
    if (const std::string workbook = CurrentWorkbook(); !workbook.empty())
        Guarded([&] { actions_.SaveMarkedCopy(workbook); });
}

void FaultPanel::ImportTidily() {
    if (const std::string workbook = CurrentWorkbook(); !workbook.empty())
        Guarded([&] { actions_.ImportTidily(workbook); });
}

void FaultPanel::ShowMenu(const QPoint& at) {
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("faultMenu"));
    const auto add = [&](const QString& text, const char* name, const QKeySequence& key, bool enabled,
                         void (FaultPanel::*act)()) {
        QAction* action = menu.addAction(text, this, act);
        action->setObjectName(QString::fromLatin1(name));
        action->setShortcut(key);
        action->setEnabled(enabled);
    };
    const bool any = model_->rowCount() > 0;
    const bool ofWorkbook = !CurrentWorkbook().empty();
    const auto place =
        table_->currentIndex().isValid() ? model_->ReportedAt(table_->currentIndex().row()) : std::nullopt;
    add(QStringLiteral("转到(&G)"), "mnuGoTo", Qt::Key_Return, table_->currentIndex().isValid(),
        &FaultPanel::GoToCurrent);
    add(QStringLiteral("复制(&C)"), "mnuCopyFaults", QKeySequence::Copy, any, &FaultPanel::CopyRows);
    add(QStringLiteral("从列表中移去(&D)"), "mnuDropFaults", Qt::Key_Delete, place.has_value(),
        &FaultPanel::DropRows);
    menu.addSeparator();
    add(QStringLiteral("另存标错副本(&S)…"), "mnuMarkedCopy", Qt::CTRL | Qt::Key_M, ofWorkbook,
        &FaultPanel::SaveMarkedCopy);
    add(QStringLiteral("整理后引入(&T)"), "mnuImportTidily", Qt::CTRL | Qt::Key_T, ofWorkbook,
        &FaultPanel::ImportTidily);
    Guarded([&] { menu.exec(table_->viewport()->mapToGlobal(at)); });
}

// The selected rows, or all of them, with their headings: for a list that is worked off elsewhere.
void FaultPanel::CopyRows() {
    const QItemSelectionModel& selection = *table_->selectionModel();
    QString text;
    const auto add = [&](auto textOf) {
        for (int field = 0; field < model_->columnCount(); ++field)
            text += (field > 0 ? QStringLiteral("\t") : QString()) + textOf(field);
        text += QStringLiteral("\r\n");
    };
    add(Heading);
    const bool all = !selection.hasSelection();
    for (int row = 0; row < model_->rowCount(); ++row) {
        if (!all && !selection.isRowSelected(row)) continue;
        add([&](int field) { return model_->index(row, field).data().toString(); });
    }
    QApplication::clipboard()->setText(text);
}

bool FaultPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == table_ && event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<QKeyEvent&>(*event);
        if (key.matches(QKeySequence::Copy)) {
            Guarded([this] { CopyRows(); });
            return true;
        }
        if (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) {
            GoTo(table_->currentIndex());
            return true;
        }
        if (key.modifiers() == Qt::ControlModifier && key.key() == Qt::Key_M) {
            SaveMarkedCopy();
            return true;
        }
        if (key.modifiers() == Qt::ControlModifier && key.key() == Qt::Key_T) {
            ImportTidily();
            return true;
        }
        if (key.key() == Qt::Key_Delete) {
            Guarded([this] { DropRows(); });
            return true;
        }
        if (key.key() == Qt::Key_Escape) {
            hide();
            return true;
        }
    }
    return QDockWidget::eventFilter(watched, event);
}

}  // namespace vicenter::ui
