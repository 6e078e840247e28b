#pragma once

// The names behind the codes of a cell, and codes behind names. Needs no window.

#include <string>

#include "center/grid/entry_grid.h"

namespace vicenter::center {

// Code and name as they belong together. Empty for cells without codes, and for those that nobody knows.
std::string NamesBehind(const EntryGrid& grid, const CellAddress& cell);

}  // namespace vicenter::center
