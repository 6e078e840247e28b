#pragma once

// Entry lines from a JSON document into a grid: what `vicenter save` reads.

#include "center/grid/entry_grid.h"
#include "host/cli/json.h"

namespace vicenter::host {

// Fills the grid with the document's lines, each field checked as the column demands, and resolves ids that
// are left out from the codes, as leaving a typed cell would. Returns the number of lines. Throws Error 5
// that names line and field for whatever cannot be taken; nothing is ever shortened or changed silently.
int ReadLines(const Variant& document, center::EntryGrid& grid);

}  // namespace vicenter::host
