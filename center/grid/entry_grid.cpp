#include "center/grid/entry_grid.h"

#include <algorithm>
#include <numeric>

#include "center/editing/cell_rules.h"
#include "platform/system/utf8.h"

namespace vicenter::center {

namespace {

int CheckOfColumn(int gridColumn) {
    return static_cast<int>(store::CheckOf(gridColumn));
}

void Extend(CellRange& range, const CellRange& more) {
    if (more.IsEmpty()) return;
    if (range.IsEmpty()) {
        range = more;
        return;
    }
    range.firstRow = std::min(range.firstRow, more.firstRow);
    range.firstColumn = std::min(range.firstColumn, more.firstColumn);
    range.lastRow = std::max(range.lastRow, more.lastRow);
    range.lastColumn = std::max(range.lastColumn, more.lastColumn);
}

}  // namespace

ColumnOrder DesignedOrder() {
    ColumnOrder order{};
    std::iota(order.begin(), order.end(), 1);
    return order;
}

EntryGrid::EntryGrid() {
    for (const ColumnSpec& spec : Columns()) {
        layouts_[static_cast<std::size_t>(spec.column)] = {static_cast<double>(spec.designedWidth),
                                                           spec.designedHidden};
    }
    rows_.resize(kFirstRowTotal);
}

EntryGrid::~EntryGrid() = default;

void EntryGrid::AddObserver(GridObserver& observer) {
    observers_.push_back(&observer);
}

void EntryGrid::RemoveObserver(GridObserver& observer) {
    std::erase(observers_, &observer);
}

template <class Telling>
void EntryGrid::Tell(Telling tell) {
    // By index: an observer may leave while it is told.
    for (std::size_t i = 0; i < observers_.size(); ++i)
        tell(*observers_[i]);
}

bool EntryGrid::Contains(int row, int gridColumn) const {
    return row >= 1 && row <= RowTotal() && gridColumn >= 1 && gridColumn <= kColumnCount;
}

GridRow& EntryGrid::RowAt(int row) {
    GridRowPtr& pointer = rows_[static_cast<std::size_t>(row - 1)];
    if (!pointer) pointer = std::make_unique<GridRow>();
    return *pointer;
}

const GridRow* EntryGrid::RowIfAny(int row) const {
    if (row < 1 || row > RowTotal()) return nullptr;
    return rows_[static_cast<std::size_t>(row - 1)].get();
}

// --- rows

void EntryGrid::SetRowTotal(int rows) {
    const int total = RowTotal();
    if (rows > total) {
        InsertRows(total + 1, rows - total);
    } else if (rows >= 0 && rows < total) {
        RemoveRows(rows + 1, total - rows);
    }
}

void EntryGrid::Clear(int rows) {
    Tell([](GridObserver& o) { o.AboutToReset(); });
    pendingTexts_ = {};
    pendingLooks_ = {};
    rows_.clear();
    rows_.resize(static_cast<std::size_t>(rows));
    active_ = rows > 0 ? CellAddress{1, 1} : CellAddress{0, 0};
    Tell([](GridObserver& o) { o.WasReset(); });
}

void EntryGrid::InsertRows(int firstRow, int count) {
    if (count < 1 || firstRow < 1 || firstRow > RowTotal() + 1) return;
    std::vector<GridRowPtr> blanks(static_cast<std::size_t>(count));
    RestoreRows(firstRow, std::move(blanks));
}

void EntryGrid::RestoreRows(int firstRow, std::vector<GridRowPtr> rows) {
    const int count = static_cast<int>(rows.size());
    FlushPending();
    Tell([=](GridObserver& o) { o.RowsAboutToBeInserted(firstRow, count); });
    rows_.insert(rows_.begin() + (firstRow - 1), std::make_move_iterator(rows.begin()),
                 std::make_move_iterator(rows.end()));
    if (recorder_ != nullptr) recorder_->RowsInserted(firstRow, count);
    Tell([=](GridObserver& o) { o.RowsInserted(firstRow, count); });
}

GridRowPtr EntryGrid::CopyOfRow(int row) const {
    const GridRow* content = RowIfAny(row);
    return content == nullptr ? nullptr : std::make_unique<GridRow>(*content);
}

void EntryGrid::RemoveRows(int firstRow, int count) {
    if (firstRow < 1 || firstRow > RowTotal()) return;
    count = std::min(count, RowTotal() - firstRow + 1);
    if (count < 1) return;
    FlushPending();
    Tell([=](GridObserver& o) { o.RowsAboutToBeRemoved(firstRow, count); });
    const auto first = rows_.begin() + (firstRow - 1);
    std::vector<GridRowPtr> removed(std::make_move_iterator(first), std::make_move_iterator(first + count));
    rows_.erase(first, first + count);
    const bool activeRowGone = active_.row > RowTotal();
    if (activeRowGone) active_ = RowTotal() > 0 ? CellAddress{RowTotal(), active_.column} : CellAddress{0, 0};
    if (recorder_ != nullptr) recorder_->RowsRemoved(firstRow, std::move(removed));
    Tell([=](GridObserver& o) { o.RowsRemoved(firstRow, count); });
    if (activeRowGone) Tell([cell = active_](GridObserver& o) { o.ActiveCellChanged(cell); });
}

bool EntryGrid::IsBlankRow(int row) const {
    const GridRow* content = RowIfAny(row);
    return content == nullptr || content->IsBlank();
}

// --- texts

std::string_view EntryGrid::Text(int row, int gridColumn) const {
    if (!Contains(row, gridColumn)) return {};
    const GridRow* content = RowIfAny(row);
    return content == nullptr ? std::string_view() : content->Text(gridColumn);
}

bool EntryGrid::SetText(int row, int gridColumn, std::string_view text) {
    if (!Contains(row, gridColumn) || !AcceptsProgramText(gridColumn, text)) return false;
    ReplaceText(row, gridColumn, text);
    return true;
}

bool EntryGrid::PutReading(int row, int gridColumn, const TextReading& reading) {
    if (reading.verdict == TextVerdict::Taken) return SetText(row, gridColumn, reading.text);
    const bool kept = reading.verdict != TextVerdict::Locked && Contains(row, gridColumn) &&
                      system::CodeUnitCount(reading.text) <= kLongestKeptText;
    if (kept) ReplaceText(row, gridColumn, reading.text, reading.verdict);
    return kept;
}

TextVerdict EntryGrid::Refusal(int row, int gridColumn) const {
    const GridRow* content = Contains(row, gridColumn) ? RowIfAny(row) : nullptr;
    return content == nullptr ? TextVerdict::Taken : content->Refusal(gridColumn);
}

void EntryGrid::RestoreText(int row, int gridColumn, std::string_view text, TextVerdict refusal) {
    if (Contains(row, gridColumn)) ReplaceText(row, gridColumn, text, refusal);
}

void EntryGrid::ReplaceText(int row, int gridColumn, std::string_view text, TextVerdict refusal) {
    const std::string_view current = Text(row, gridColumn);
    const TextVerdict refusedBefore = Refusal(row, gridColumn);
    if (current == text && refusedBefore == refusal) return;
    const std::string before(current);
    GridRow& content = RowAt(row);
    content.SetText(gridColumn, text);
    content.SetRefusal(gridColumn, refusal);
    if (recorder_ != nullptr) recorder_->TextReplaced(row, gridColumn, before, refusedBefore);
    ReportTexts({row, gridColumn, row, gridColumn});
    // Red for its own sake no longer; what master data say of it is said when the cell is left.
    if (refusedBefore != TextVerdict::Taken && refusal == TextVerdict::Taken)
        SetForeColor({row, gridColumn, row, gridColumn}, color::kBlack);
}

void EntryGrid::FillRow(int row, const std::array<std::string, kColumnCount>& texts) {
    if (row < 1 || row > RowTotal()) return;
    RowAt(row).SetTexts(texts);
    ReportTexts({row, 1, row, kColumnCount});
}

// --- looks

CellLook EntryGrid::Look(int row, int gridColumn) const {
    const GridRow* content = Contains(row, gridColumn) ? RowIfAny(row) : nullptr;
    if (content == nullptr) return {};
    return {content->ForeColor(gridColumn), content->BackColor(gridColumn)};
}

void EntryGrid::SetForeColor(const CellRange& range, std::int32_t value) {
    Paint(range, value, color::kBlack, &GridRow::SetForeColor);
}

void EntryGrid::SetBackColor(const CellRange& range, std::int32_t value) {
    Paint(range, value, color::kWhite, &GridRow::SetBackColor);
}

void EntryGrid::Paint(const CellRange& range, std::int32_t value, std::int32_t usual,
                      bool (GridRow::*paint)(int, std::int32_t)) {
    CellRange changed;
    const int lastRow = std::min(range.lastRow, RowTotal());
    for (int row = std::max(1, range.firstRow); row <= lastRow; ++row) {
        // A blank row already has the usual colours and stays one pointer.
        if (value == usual && RowIfAny(row) == nullptr) continue;
        GridRow& content = RowAt(row);
        for (int c = std::max(1, range.firstColumn); c <= std::min(range.lastColumn, kColumnCount); ++c) {
            if ((content.*paint)(c, value)) Extend(changed, {row, c, row, c});
        }
    }
    ReportLooks(changed);
}

int EntryGrid::FaultyCheck(int row, int gridColumn) const {
    const GridRow* content = RowIfAny(row);
    const int check = CheckOfColumn(gridColumn);
    return content != nullptr && check != 0 && content->HasFault(check) ? check : 0;
}

void EntryGrid::SetFaultyCheck(int row, int check, bool faulty) {
    if (row < 1 || row > RowTotal() || (!faulty && RowIfAny(row) == nullptr)) return;
    RowAt(row).SetFault(check, faulty);
}

void EntryGrid::SetColumnWidth(int gridColumn, double twips) {
    ColumnLayout& layout = layouts_[static_cast<std::size_t>(gridColumn)];
    if (layout.width == twips) return;
    layout.width = twips;
    Tell([=](GridObserver& o) { o.ColumnsChanged(gridColumn, gridColumn); });
}

void EntryGrid::SetColumnHidden(int gridColumn, bool hidden) {
    ColumnLayout& layout = layouts_[static_cast<std::size_t>(gridColumn)];
    if (layout.hidden == hidden) return;
    layout.hidden = hidden;
    Tell([=](GridObserver& o) { o.ColumnsChanged(gridColumn, gridColumn); });
}

void EntryGrid::SetOrder(const ColumnOrder& order) {
    const ColumnOrder designed = DesignedOrder();
    if (order == order_ || !std::is_permutation(order.begin(), order.end(), designed.begin())) return;
    order_ = order;
    Tell([](GridObserver& o) { o.ColumnsMoved(); });
}

void EntryGrid::SetRowHeights(int header, int data) {
    headerHeight_ = header;
    rowHeight_ = data;
    Tell([](GridObserver& o) { o.RowHeightsChanged(); });
}

void EntryGrid::SetFont(GridFont font) {
    font_ = std::move(font);
    Tell([](GridObserver& o) { o.FontChanged(); });
}

// --- active cell and reports

void EntryGrid::SetActiveCell(const CellAddress& cell) {
    if (!Contains(cell.row, cell.column)) return;
    active_ = cell;
    Tell([cell](GridObserver& o) { o.ActiveCellChanged(cell); });
}

void EntryGrid::ScrollIntoView(const CellAddress& cell) {
    Tell([cell](GridObserver& o) { o.ScrolledIntoView(cell); });
}

void EntryGrid::SetReDraw(bool on) {
    redraw_ = on;
    if (on) FlushPending();
}

void EntryGrid::FlushPending() {
    const CellRange texts = std::exchange(pendingTexts_, {});
    const CellRange looks = std::exchange(pendingLooks_, {});
    if (!texts.IsEmpty()) Tell([&](GridObserver& o) { o.TextsChanged(texts); });
    if (!looks.IsEmpty()) Tell([&](GridObserver& o) { o.LooksChanged(looks); });
}

void EntryGrid::ReportTexts(const CellRange& range) {
    Extend(pendingTexts_, range);
    if (redraw_) FlushPending();
}

void EntryGrid::ReportLooks(const CellRange& range) {
    Extend(pendingLooks_, range);
    if (redraw_) FlushPending();
}

}  // namespace vicenter::center
