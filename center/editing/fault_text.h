#pragma once

// Why a cell is red, in words: which check failed and what would be accepted. Asks the database what fits.

#include <string>

#include "center/grid/entry_grid.h"

namespace vicenter::center {

// The empty text for a sound cell.
std::string FaultText(const EntryGrid& grid, const CellAddress& cell);

}  // namespace vicenter::center
