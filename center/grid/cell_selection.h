#pragma once

// What the user has selected in the grid: blocks of cells, in one piece or several, or whole rows. A value.
//
// Blocks stand for their shown cells alone: what nobody sees is neither copied nor changed. Whole rows stand
// for all their columns.

#include <utility>
#include <vector>

#include "center/grid/entry_grid.h"

namespace vicenter::center {

struct RowRun {
    int first = 1;
    int last = 0;

    int Count() const { return last - first + 1; }
    friend bool operator==(const RowRun&, const RowRun&) = default;
};

struct CellSelection {
    CellSelection() = default;
    CellSelection(const CellRange& range)  // NOLINT(google-explicit-constructor): one block is a selection
        : pieces(range.IsEmpty() ? std::vector<CellRange>() : std::vector<CellRange>{range}) {}
    CellSelection(int firstRow, int firstColumn, int lastRow, int lastColumn)
        : CellSelection(CellRange{firstRow, firstColumn, lastRow, lastColumn}) {}
    CellSelection(int row, int gridColumn) : CellSelection(row, gridColumn, row, gridColumn) {}
    explicit CellSelection(std::vector<CellRange> ranges) : pieces(std::move(ranges)) {}
    static CellSelection Rows(const std::vector<RowRun>& runs);

    bool IsEmpty() const { return pieces.empty(); }
    // The smallest block around everything.
    CellRange Bounds() const;

    std::vector<CellRange> pieces;  // may overlap
    bool wholeRows = false;

    friend bool operator==(const CellSelection&, const CellSelection&) = default;
};

// The rows that are touched, from the top, runs that meet joined into one. Within the grid.
std::vector<RowRun> RowRuns(const CellSelection& selection, const EntryGrid& grid);

// The selected cells column by column: the columns that count, each with its runs of rows. Columns as they
// are shown from the left, rows within the grid.
struct ColumnRuns {
    int column = 0;
    std::vector<RowRun> rows;
};
std::vector<ColumnRuns> SelectedCells(const CellSelection& selection, const EntryGrid& grid);

// Rows and columns of a selection that is a table: the same columns in each of its rows. Empty for others.
struct SelectedTable {
    std::vector<int> rows;
    std::vector<int> columns;
    bool IsEmpty() const { return rows.empty() || columns.empty(); }
};
SelectedTable TableOf(const CellSelection& selection, const EntryGrid& grid);

// Why the cursor goes to a cell: to work there, or on the way of building a selection.
enum class CursorMove { Going, Selecting };

}  // namespace vicenter::center
