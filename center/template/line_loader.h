#pragma once

// Reads a template's entry lines into a grid and marks what no longer resolves. Needs no window.

#include <optional>
#include <string>

#include "center/editing/cell_checks.h"
#include "center/grid/entry_grid.h"
#include "store/template_reading.h"

namespace vicenter::center {

using store::LinesDigest;

// Fills the grid with the lines of the template and marks every row; the number of lines, or nothing when the
// lines cannot be read. With 100 lines or more the grid gets two rows more than lines; below, it keeps its
// rows. digest, unless nullptr, gets what was read. Lines that fail half-way are an error, with the lines
// before them in the grid.
std::optional<int> LoadLines(EntryGrid& grid, const std::string& templateId, LinesDigest* digest = nullptr);

// Of the first rows of a grid, as of lines that were read.
LinesDigest DigestOfRows(const EntryGrid& grid, int rowCount);

// The row at which the line of a row will stand once the lines have been saved and read again: they come
// sorted by template number. Rows outside of those in use stay where they are.
int RowOnceSorted(const EntryGrid& grid, int rowCount, int row);

}  // namespace vicenter::center
