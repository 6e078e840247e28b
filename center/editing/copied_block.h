#pragma once

// What a copy takes along, and what became of it where it was pasted. Values.

#include <string>
#include <utility>
#include <vector>

#include "center/grid/entry_grid.h"

namespace vicenter::center {

// What a copy puts on the clipboard: a text for every program and, of whole rows, all that belongs to them
// for ourselves.
struct CopiedBlock {
    CopiedBlock(std::string theText = {}, std::string theRows = {})  // NOLINT(google-explicit-constructor)
        : text(std::move(theText)), rows(std::move(theRows)) {}
    CopiedBlock(const char* theText) : text(theText) {}  // NOLINT(google-explicit-constructor)

    std::string text;  // tab-separated, CR LF behind every row unless it is one cell alone
    std::string rows;  // nothing but for whole rows; read by WholeRows
};

// A text that a block operation could not take, by row and column of the grid.
struct RefusedCell {
    CellAddress cell;
    std::string text;
    std::string reason;
    bool kept = false;  // stands in its cell, red; else the cell has what it had
};

struct PasteResult {
    int rows = 0;   // rows that took something
    int cells = 0;  // cells that were taken
    std::vector<RefusedCell> refused;
};

// What the user learns of the texts that were not taken; the empty text when all were.
std::string RefusedText(const PasteResult& result);

}  // namespace vicenter::center
