#include "center/grid/cell_selection.h"

#include <algorithm>

#include "center/grid/whole_column.h"

namespace vicenter::center {

namespace {

// Sorts runs and joins those that meet.
std::vector<RowRun> Joined(std::vector<RowRun> runs) {
    std::sort(runs.begin(), runs.end(), [](const RowRun& a, const RowRun& b) { return a.first < b.first; });
    std::vector<RowRun> joined;
    for (const RowRun& run : runs) {
        if (!joined.empty() && run.first <= joined.back().last + 1) {
            joined.back().last = std::max(joined.back().last, run.last);
        } else {
            joined.push_back(run);
        }
    }
    return joined;
}

RowRun Clipped(const CellRange& piece, const EntryGrid& grid) {
    return {std::max(1, piece.firstRow), std::min(piece.lastRow, grid.RowTotal())};
}

bool IsWholeColumn(const CellRange& piece, const EntryGrid& grid) {
    return grid.RowTotal() > 1 && piece.firstRow <= 1 && piece.lastRow >= grid.RowTotal();
}

}  // namespace

CellSelection CellSelection::Rows(const std::vector<RowRun>& runs) {
    CellSelection selection;
    for (const RowRun& run : runs)
        selection.pieces.push_back({run.first, 1, run.last, kColumnCount});
    selection.wholeRows = true;
    return selection;
}

CellRange CellSelection::Bounds() const {
    if (pieces.empty()) return {};
    CellRange bounds = pieces.front();
    for (const CellRange& piece : pieces) {
        bounds.firstRow = std::min(bounds.firstRow, piece.firstRow);
        bounds.firstColumn = std::min(bounds.firstColumn, piece.firstColumn);
        bounds.lastRow = std::max(bounds.lastRow, piece.lastRow);
        bounds.lastColumn = std::max(bounds.lastColumn, piece.lastColumn);
    }
    return bounds;
}

std::vector<RowRun> RowRuns(const CellSelection& selection, const EntryGrid& grid) {
    std::vector<RowRun> runs;
    for (const CellRange& piece : selection.pieces) {
        const RowRun run = Clipped(piece, grid);
        if (run.Count() > 0) runs.push_back(run);
    }
    return Joined(std::move(runs));
}

bool HoldsWholeColumn(const CellSelection& selection, const EntryGrid& grid) {
    return !selection.wholeRows &&
           std::any_of(selection.pieces.begin(), selection.pieces.end(),
                       [&](const CellRange& piece) { return IsWholeColumn(piece, grid); });
}

CellSelection MeantCells(CellSelection selection, const EntryGrid& grid, int rowsInUse) {
    if (selection.wholeRows) return selection;
    for (CellRange& piece : selection.pieces) {
        // The first row stays: that is where lines begin.
        if (IsWholeColumn(piece, grid)) piece.lastRow = std::max(1, rowsInUse);
    }
    return selection;
}

std::vector<ColumnRuns> SelectedCells(const CellSelection& selection, const EntryGrid& grid) {
    std::vector<ColumnRuns> cells;
    // Whole rows are the same wherever the user has put his columns.
    for (const int c : selection.wholeRows ? DesignedOrder() : grid.Order()) {
        if (grid.Layout(c).hidden && !selection.wholeRows) continue;
        ColumnRuns column{c, {}};
        for (const CellRange& piece : selection.pieces) {
            const RowRun run = Clipped(piece, grid);
            if (piece.firstColumn <= c && c <= piece.lastColumn && run.Count() > 0)
                column.rows.push_back(run);
        }
        column.rows = Joined(std::move(column.rows));
        if (!column.rows.empty()) cells.push_back(std::move(column));
    }
    return cells;
}

SelectedTable TableOf(const CellSelection& selection, const EntryGrid& grid) {
    SelectedTable table;
    const std::vector<ColumnRuns> cells = SelectedCells(selection, grid);
    for (const ColumnRuns& column : cells) {
        if (column.rows != cells.front().rows) return {};
        table.columns.push_back(column.column);
    }
    if (cells.empty()) return {};
    for (const RowRun& run : cells.front().rows) {
        for (int row = run.first; row <= run.last; ++row)
            table.rows.push_back(row);
    }
    return table;
}

}  // namespace vicenter::center
