#pragma once

// What a column means that was chosen by its header, or by its cells from the first row of the grid to the
// last: its cells in the rows in use. The rows below are nobody's yet, and rows as such are not named by it.

#include "center/grid/cell_selection.h"

namespace vicenter::center {

bool HoldsWholeColumn(const CellSelection& selection, const EntryGrid& grid);
// The cells that are meant; of a selection without a whole column all of them.
CellSelection MeantCells(CellSelection selection, const EntryGrid& grid, int rowsInUse);

}  // namespace vicenter::center
