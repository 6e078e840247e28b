#include "center/editing/grid_editing.h"

#include <algorithm>

#include "center/editing/cell_checks.h"
#include "center/editing/line_amount.h"
#include "center/editing/row_order.h"
#include "center/grid/quiet_grid.h"
#include "center/lookups/cell_resolution.h"

namespace vicenter::center {

namespace {
constexpr const char* kTwoRowsText = "凭证模板分录不能小于2行，删除失败！";
constexpr int kFewestRows = 2;
}  // namespace

// --- moving and typing

void GridEditing::KeepSpareRow() {
    // A blank row at the end is no change of content and nothing to undo.
    const Unrecorded growing(*state_.grid);
    KeepBlankRows(state_, 2);  // the one that is entered, and one below it
}

void GridEditing::Leave(const CellAddress& cell) {
    // Whoever may only look changes nothing by moving about.
    if (!CanEdit() || !state_.open.IsOpen() || cell.row < 1 || cell.column < 1) return;
    EntryGrid& grid = *state_.grid;
    const bool given = typed_ == cell || grid.Refusal(cell.row, cell.column) == TextVerdict::NotLookedUp;
    const UndoStep step(state_.open, typed_ == cell);
    typed_.reset();
    MasterRecords records;
    if (!given) {
        ResolveCell(grid, cell, records);
    } else if (ResolveNew(grid, cell, records, TextOrigin::Typed) == Resolution::Unreadable) {
        state_.open.SetNotice(UnreadableText(grid.Text(cell.row, cell.column)));
    }
    CellChecks checks;
    const int check = CheckOfColumn(cell.column);
    if (check == 1 || cell.column == column::kExplanation) {
        // Every check of the row depends on its account, which these columns may have changed.
        MarkRow(grid, cell.row, checks);
    } else if (check != 0) {
        MarkCells(grid, cell.row, check, checks);
    }
}

void GridEditing::MoveActiveCell(const CellAddress& to, CursorMove how) {
    EntryGrid& grid = *state_.grid;
    const CellAddress from = grid.ActiveCell();
    if (!(from == to)) Leave(from);
    if (how == CursorMove::Selecting) {
        grid.SetActiveCell(to);
        return;
    }
    CellAddress target = to;
    // Whoever may only look enters no lines, with gaps or without.
    if (CanEdit() && LeavesGap(state_, to.row)) {
        target.row = state_.open.RowCount() + 1;
        KeepSpareRow();
    }
    grid.SetActiveCell(target);
    grid.ScrollIntoView(target);
    if (target == to) KeepSpareRow();
}

void GridEditing::FinishTyping() {
    if (typed_) Leave(*typed_);
}

TextVerdict GridEditing::CommitText(const CellAddress& cell, const std::string& text) {
    if (!CanEdit()) return TextVerdict::Locked;
    const TextReading reading = ReadCellText(cell.column, text, TextOrigin::Typed);
    if (reading.verdict == TextVerdict::Locked) return reading.verdict;
    if (LeavesGap(state_, cell.row)) return TextVerdict::Locked;
    const UndoStep step(state_.open);
    EntryGrid& grid = *state_.grid;
    if (grid.Text(cell.row, cell.column) == reading.text) return reading.verdict;
    if (!grid.PutReading(cell.row, cell.column, reading)) return reading.verdict;
    MarkOwnVerdict(grid, cell);
    if (MakesAmount(cell.column)) {
        if (const auto amount = AmountToFill(grid, cell.row))
            grid.SetText(cell.row, column::kAmount, *amount);
    }
    typed_ = cell;
    return reading.verdict;
}

void GridEditing::ClearCells(const CellSelection& selection) {
    if (!CanEdit()) return;
    EntryGrid& grid = *state_.grid;
    const std::vector<ColumnRuns> cells = SelectedCells(selection, grid);
    const std::vector<RowRun> rows = RowRuns(selection, grid);
    const int lastRow = state_.open.RowCount();
    const UndoStep step(state_.open);
    grid.SetReDraw(false);
    MasterRecords records;
    for (const ColumnRuns& column : cells) {
        // Ids go with whole rows, else with the codes that they stand behind.
        if (Column(column.column).locked && !selection.wholeRows) continue;
        for (const RowRun& run : column.rows) {
            for (int row = run.first; row <= std::min(run.last, lastRow); ++row) {
                if (grid.Text(row, column.column).empty()) continue;
                grid.SetText(row, column.column, {});
                ResolveCell(grid, {row, column.column}, records);
            }
        }
    }
    CellChecks checks;
    for (const RowRun& run : rows) {
        MarkRows(grid, run.first, std::min(run.last, lastRow), checks);
    }
    typed_.reset();
    grid.SetReDraw(true);
}

bool GridEditing::RepeatExplanation(const std::string& cellText) {
    const CellAddress cell = state_.grid->ActiveCell();
    if (!CanEdit() || cell.column != column::kExplanation || cell.row < 2 || cellText != ".") return false;
    const std::string above(state_.grid->Text(cell.row - 1, column::kExplanation));
    state_.grid->SetText(cell.row, column::kExplanation, above);
    return true;
}

// --- rows

void GridEditing::InsertRow() {
    const int row = state_.grid->ActiveCell().row;
    InsertRows(row, 1);
}

void GridEditing::InsertRows(int firstRow, int count) {
    if (state_.open.RowCount() == 0 || firstRow < 1 || count < 1 || LeavesGap(state_, firstRow)) return;
    EntryGrid& grid = *state_.grid;
    const UndoStep step(state_.open);
    typed_.reset();
    grid.SetReDraw(false);
    grid.InsertRows(firstRow, count);
    grid.SetReDraw(true);
    grid.ScrollIntoView({firstRow, std::max(1, grid.ActiveCell().column)});
}

void GridEditing::InsertRows(const std::vector<RowRun>& runs) {
    if (state_.open.RowCount() == 0 || runs.empty() || LeavesGap(state_, runs.back().first)) return;
    const UndoStep step(state_.open);
    for (auto run = runs.rbegin(); run != runs.rend(); ++run)
        InsertRows(run->first, run->Count());
}

void GridEditing::DeleteRow() {
    const int row = state_.grid->ActiveCell().row;
    DeleteRows(row, 1);
}

void GridEditing::DeleteRows(int firstRow, int count) {
    if (state_.open.RowCount() == 0 || firstRow < 1 || firstRow > state_.open.RowCount() || count < 1) return;
    EntryGrid& grid = *state_.grid;
    count = std::min(count, state_.open.RowCount() - firstRow + 1);
    if (grid.RowTotal() >= kFewestRows && grid.RowTotal() - count < kFewestRows) {
        Tell(kTwoRowsText);
        return;
    }
    const UndoStep step(state_.open);
    typed_.reset();
    grid.SetReDraw(false);
    grid.RemoveRows(firstRow, count);
    grid.SetReDraw(true);
    const CellAddress active = grid.ActiveCell();
    if (active.row > state_.open.RowCount() + 1)
        grid.SetActiveCell({state_.open.RowCount() + 1, active.column});
}

void GridEditing::DeleteRows(std::vector<RowRun> runs) {
    int count = 0;
    for (RowRun& run : runs) {
        run.last = std::min(run.last, state_.open.RowCount());
        count += std::max(0, run.Count());
    }
    if (count == 0) return;
    if (state_.grid->RowTotal() >= kFewestRows && state_.grid->RowTotal() - count < kFewestRows) {
        Tell(kTwoRowsText);
        return;
    }
    const UndoStep step(state_.open);
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
        if (run->Count() > 0) DeleteRows(run->first, run->Count());
    }
}

// --- undo

void GridEditing::Return(const JournalMark& mark) {
    EntryGrid& grid = *state_.grid;
    typed_.reset();
    CellChecks checks;
    grid.SetReDraw(false);
    MarkRows(grid, mark.firstRow, std::min(mark.lastRow, grid.RowTotal()), checks);
    grid.SetReDraw(true);
    if (mark.active.row < 1) return;
    grid.SetActiveCell(mark.active);
    grid.ScrollIntoView(mark.active);  // seen, wherever the user has scrolled to
}

void GridEditing::Undo() {
    if (CanEdit() && state_.open.Journal().CanUndo()) Return(state_.open.Undo());
}

void GridEditing::Redo() {
    if (CanEdit() && state_.open.Journal().CanRedo()) Return(state_.open.Redo());
}

}  // namespace vicenter::center
