#include "ui/dialogs/history_dialog.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QVBoxLayout>

#include "store/template_columns.h"
#include "ui/look/dialog_frame.h"
#include "ui/look/list_table.h"
#include "ui/look/one_line.h"
#include "ui/look/qt_text.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace {

void Put(QTableWidget& table, int row, const QStringList& texts) {
    for (int column = 0; column < texts.size(); ++column) {
        auto* item = new QTableWidgetItem(InOneLine(texts[column]));
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        item->setToolTip(ToolTipText(texts[column]));
        table.setItem(row, column, item);
    }
}

QString FieldText(int column) {
    return column == 0 ? QStringLiteral("整行") : ToQt(store::Column(column).Title());
}

}  // namespace

HistoryDialog::HistoryDialog(center::TemplateHistory& history, QWidget* parent)
    : QDialog(parent),
      history_(history),
      versions_(MakeTable("versions", QStringLiteral("版本"),
                          {QStringLiteral("时间"), QStringLiteral("操作"), QStringLiteral("用户"),
                           QStringLiteral("之前的行数"), QStringLiteral("之前的名称")})),
      changes_(MakeTable("changes", QStringLiteral("所选版本与现在的差别"),
                         {QStringLiteral("变化"), QStringLiteral("模板编号"), QStringLiteral("行"),
                          QStringLiteral("字段"), QStringLiteral("此版本"), QStringLiteral("现在")})),
      note_(new QLabel(this)),
      newName_(new QLineEdit(this)) {
    setObjectName(QStringLiteral("frmHistory"));
    setWindowTitle(ToQt(history_.Caption()));
    note_->setObjectName(QStringLiteral("note"));
    newName_->setObjectName(QStringLiteral("newName"));
    history_.SetView(this);
    FillVersions();
    connect(versions_, &QTableWidget::currentCellChanged, this, [this](int row, int, int before, int) {
        if (row == before || row < 0) return;
        Guarded([&] { history_.Choose(static_cast<std::size_t>(row)); });
        ShowChosen();
    });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 14, 14, 14);
    layout->setSpacing(8);
    layout->addWidget(versions_, 2);
    layout->addWidget(note_);
    layout->addWidget(changes_, 3);
    layout->addLayout(Buttons());
    FrameDialog(*this, QSize(760, 560));
    versions_->setCurrentCell(0, 0);
    ShowChosen();
    versions_->setFocus();
}

void HistoryDialog::Unload() {
    accept();
}

QTableWidget* HistoryDialog::MakeTable(const char* name, const QString& spoken, const QStringList& headings) {
    auto* table = new QTableWidget(0, static_cast<int>(headings.size()), this);
    table->setObjectName(QString::fromLatin1(name));
    table->setHorizontalHeaderLabels(headings);
    SetUpList(*table, spoken);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    return table;
}

void HistoryDialog::FillVersions() {
    const auto& versions = history_.Versions();
    versions_->setRowCount(static_cast<int>(versions.size()));
    int row = 0;
    for (const store::HistoryVersion& version : versions) {
        Put(*versions_, row++,
            {ToQt(version.keptAt), ToQt(store::CommandText(version.command)),
             ToQt(history_.UserText(version)), QString::number(version.lines), ToQt(version.name)});
    }
    FitColumns(*versions_);
}

void HistoryDialog::ShowChosen() {
    const auto& changes = history_.Changes();
    changes_->setRowCount(static_cast<int>(changes.size()));
    int row = 0;
    for (const center::HistoryChange& change : changes) {
        Put(*changes_, row++,
            {ToQt(change.kind), ToQt(change.number), QString::number(change.row), FieldText(change.column),
             ToQt(change.before), ToQt(change.after)});
    }
    FitColumns(*changes_);
    note_->setText(ToQt(history_.Note()));
    newName_->setText(ToQt(GuardedOr(std::string(), [this] { return history_.ProposedName(); })));
}

QLayout* HistoryDialog::Buttons() {
    const auto button = [this](const QString& text, const char* name) {
        auto* made = new QPushButton(text, this);
        made->setObjectName(QString::fromLatin1(name));
        made->setAutoDefault(false);
        return made;
    };
    auto* over = button(QStringLiteral("恢复(&R)"), "cmdRestore");
    auto* asNew = button(QStringLiteral("恢复为新模板(&N)"), "cmdRestoreAsNew");
    auto* close = button(QStringLiteral("关闭(&C)"), "cmdClose");
    over->setVisible(!history_.OfDeleted());
    over->setEnabled(history_.MayRestore());
    asNew->setEnabled(history_.MayRestore());
    newName_->setEnabled(history_.MayRestore());
    connect(over, &QPushButton::clicked, this, [this] { Guarded([this] { history_.RestoreOver(); }); });
    connect(asNew, &QPushButton::clicked, this,
            [this] { Guarded([this] { history_.RestoreAsNew(FromQt(newName_->text())); }); });
    connect(close, &QPushButton::clicked, this, &QDialog::reject);

    auto* label = new QLabel(QStringLiteral("新模板名称(&M)："), this);
    label->setBuddy(newName_);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addWidget(label);
    buttons->addWidget(newName_, 1);
    buttons->addWidget(asNew);
    buttons->addWidget(over);
    buttons->addWidget(close);
    return buttons;
}

}  // namespace vicenter::ui
