#pragma once

// The numbers of the status line. Pure functions of the grid.

#include "center/entry_grid.h"
#include "center/vicenter_view.h"

namespace vicenter::center {

// Lines, template numbers, sums of the active row's number and the numbers whose sides differ.
StatusState SumUp(const EntryGrid& grid, int rowCount, int activeRow);

// The sum of the numbers in a block, as a display text; empty when there are fewer than two.
std::string SumOfSelection(const EntryGrid& grid, const CellRange& range);

}  // namespace vicenter::center
