#pragma once

// The names behind the codes of a cell. Needs no window.

#include <string>

#include "center/grid/entry_grid.h"

namespace vicenter::center {

// Empty for cells without codes and for codes without names.
std::string NamesBehind(const EntryGrid& grid, const CellAddress& cell);

}  // namespace vicenter::center
