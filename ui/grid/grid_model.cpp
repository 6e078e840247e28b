#include "ui/grid/grid_model.h"

#include <algorithm>

#include "center/editing/cell_checks.h"
#include "ui/look/qt_text.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

QColor FromGridColor(std::int32_t value) {
    return QColor(value & 0xFF, (value >> 8) & 0xFF, (value >> 16) & 0xFF);
}

GridModel::GridModel(std::shared_ptr<center::EntryGrid> grid, center::GridActions& actions, QObject* parent)
    : QAbstractTableModel(parent), grid_(std::move(grid)), bands_(*grid_), actions_(actions) {
    grid_->AddObserver(*this);
}

GridModel::~GridModel() {
    grid_->RemoveObserver(*this);
}

QModelIndex GridModel::IndexOf(const center::CellAddress& cell) const {
    if (cell.row < 1 || cell.row > rowCount() || cell.column < 1 || cell.column > columnCount()) return {};
    return index(cell.row - 1, cell.column - 1);
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : grid_->RowTotal();
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : center::kColumnCount;
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const center::CellAddress cell = AddressOf(index);
    switch (role) {
        case Qt::DisplayRole:
            return ToQt(center::DisplayText(cell.column, grid_->Text(cell.row, cell.column)));
        case Qt::EditRole:
            return ToQt(grid_->Text(cell.row, cell.column));
        case Qt::ForegroundRole: {
            const std::int32_t color = grid_->Look(cell.row, cell.column).foreColor;
            return color == center::color::kBlack ? QVariant() : QVariant(FromGridColor(color));
        }
        case Qt::BackgroundRole: {
            const std::int32_t color = grid_->Look(cell.row, cell.column).backColor;
            return color == center::color::kWhite ? QVariant() : QVariant(FromGridColor(color));
        }
        case Qt::AccessibleTextRole:
            return SpokenText(cell);
        case Qt::AccessibleDescriptionRole:
            return SpokenState(cell);
        case Qt::TextAlignmentRole: {
            const Qt::Alignment side =
                center::Column(cell.column).rightAligned ? Qt::AlignRight : Qt::AlignLeft;
            return QVariant::fromValue(side | Qt::AlignVCenter);
        }
        case Qt::ToolTipRole: {
            const bool sound = grid_->FaultyCheck(cell.row, cell.column) == 0 &&
                               center::OwnVerdict(*grid_, cell) == center::TextVerdict::Taken;
            if (sound) return ToolTipOfSound(cell);
            const std::string why = GuardedOr(std::string(), [&] { return actions_.DescribeFault(cell); });
            return why.empty() ? QVariant() : QVariant(ToolTipText(ToQtLines(why)));
        }
        default:
            return {};
    }
}

QString GridModel::ProposedText(const center::CellAddress& cell) const {
    const std::string text = GuardedOr(std::string(), [&] { return actions_.ProposedText(cell); });
    return text.empty() ? QString() : ToQt(center::DisplayText(cell.column, text));
}

// What should be looked at there, what is proposed, or what its codes stand for.
QVariant GridModel::ToolTipOfSound(const center::CellAddress& cell) const {
    const std::string hint = GuardedOr(std::string(), [&] { return actions_.DescribeHint(cell); });
    if (!hint.empty()) return ToolTipText(QStringLiteral("提示：") + ToQtLines(hint));
    if (const QVariant proposal = ProposalToolTip(cell); proposal.isValid()) return proposal;
    const std::string names = GuardedOr(std::string(), [&] { return actions_.NamesOf(cell); });
    return names.empty() ? QVariant() : QVariant(ToolTipText(ToQtLines(names)));
}

QVariant GridModel::ProposalToolTip(const center::CellAddress& cell) const {
    const QString text = ProposedText(cell);
    if (text.isEmpty()) return {};
    return QStringLiteral("建议“%1”：按 Tab 或 Enter 取用，按 Ctrl+Enter 取用这一行的建议，按 Esc 不取用")
        .arg(text);
}

// The column's name and what is in the cell: a screen reader that follows the cursor says both.
QString GridModel::SpokenText(const center::CellAddress& cell) const {
    const QString text = ToQt(center::DisplayText(cell.column, grid_->Text(cell.row, cell.column)));
    const std::string_view header = center::Column(cell.column).header;
    return QStringLiteral("%1：%2").arg(ToQt(header.substr(0, header.find('('))),
                                        text.isEmpty() ? QStringLiteral("空") : text);
}

// Where it stands, and why it is red.
QString GridModel::SpokenState(const center::CellAddress& cell) const {
    QString state = QStringLiteral("第 %1 行").arg(cell.row);
    const std::string_view number = center::NumberOfRow(*grid_, cell.row);
    if (!number.empty()) state += QStringLiteral("，模板编号 %1").arg(ToQt(number));
    const bool sound = grid_->FaultyCheck(cell.row, cell.column) == 0 &&
                       center::OwnVerdict(*grid_, cell) == center::TextVerdict::Taken;
    if (sound) {
        const QString proposal = ProposalToolTip(cell).toString();
        return proposal.isEmpty() ? state : state + QStringLiteral("，") + proposal;
    }
    const std::string why = GuardedOr(std::string(), [&] { return actions_.DescribeFault(cell); });
    if (!why.empty()) state += QStringLiteral("，异常：") + ToQtLines(why).replace(u'\n', u' ');
    return state;
}

bool GridModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable)) return false;
    const center::CellAddress cell = AddressOf(index);
    const std::string text = FromQt(value.toString());
    if (text == grid_->Text(cell.row, cell.column))
        return true;  // opening and closing an editor changes nothing
    const auto verdict =
        GuardedOr(center::TextVerdict::Locked, [&] { return actions_.CommitText(cell, text); });
    if (verdict == center::TextVerdict::Taken) return true;
    // What stays in its cell says there why it is red.
    if (grid_->Refusal(cell.row, cell.column) != center::TextVerdict::Taken) return false;
    emit textRefused(ToQt(center::VerdictText(verdict, cell.column)));
    return false;
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Vertical) {
        if (role == Qt::DisplayRole) return section + 1;
        if (role == Qt::TextAlignmentRole) return QVariant::fromValue(Qt::Alignment(Qt::AlignCenter));
        return {};
    }
    if (section < 0 || section >= center::kColumnCount) return {};
    if (role == Qt::DisplayRole) return ToQt(center::Column(section + 1).header);
    if (role == Qt::TextAlignmentRole) return QVariant::fromValue(Qt::Alignment(Qt::AlignCenter));
    return {};
}

Qt::ItemFlags GridModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    Qt::ItemFlags result = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (interactive_ && !center::Column(index.column() + 1).locked) result |= Qt::ItemIsEditable;
    return result;
}

void GridModel::EmitChanged(const center::CellRange& range, const QList<int>& roles) {
    const int lastRow = std::min(range.lastRow, rowCount());
    const int lastColumn = std::min(range.lastColumn, columnCount());
    const int firstRow = std::max(range.firstRow, 1);
    const int firstColumn = std::max(range.firstColumn, 1);
    if (firstRow > lastRow || firstColumn > lastColumn) return;
    emit dataChanged(index(firstRow - 1, firstColumn - 1), index(lastRow - 1, lastColumn - 1), roles);
}

void GridModel::TextsChanged(const center::CellRange& range) {
    EmitChanged(range, {Qt::DisplayRole, Qt::EditRole});
}

void GridModel::LooksChanged(const center::CellRange& range) {
    EmitChanged(range, {Qt::ForegroundRole, Qt::BackgroundRole, Qt::ToolTipRole});
}

void GridModel::RowsAboutToBeInserted(int firstRow, int count) {
    changingRows_ = true;
    beginInsertRows({}, firstRow - 1, firstRow + count - 2);
}

void GridModel::RowsInserted(int /*firstRow*/, int /*count*/) {
    endInsertRows();
    changingRows_ = false;
    emit activeCellChanged();
}

void GridModel::RowsAboutToBeRemoved(int firstRow, int count) {
    changingRows_ = true;
    beginRemoveRows({}, firstRow - 1, firstRow + count - 2);
}

void GridModel::RowsRemoved(int /*firstRow*/, int /*count*/) {
    endRemoveRows();
    changingRows_ = false;
    emit activeCellChanged();
}

void GridModel::AboutToReset() {
    changingRows_ = true;
    beginResetModel();
}

void GridModel::WasReset() {
    endResetModel();
    changingRows_ = false;
    emit activeCellChanged();
}

void GridModel::ColumnsChanged(int firstColumn, int lastColumn) {
    emit columnLayoutChanged(firstColumn, lastColumn);
}

void GridModel::ColumnsMoved() {
    emit columnOrderChanged();
}

void GridModel::RowHeightsChanged() {
    emit rowHeightsChanged();
}

void GridModel::FontChanged() {
    emit gridFontChanged();
}

void GridModel::ActiveCellChanged(const center::CellAddress& /*cell*/) {
    emit activeCellChanged();
}

void GridModel::ScrolledIntoView(const center::CellAddress& cell) {
    emit scrolledIntoView(cell.row, cell.column);
}

}  // namespace vicenter::ui
