#pragma once

// What should be looked at in the lines of a template though nothing there is wrong: the one rule behind the
// marks of the cells, the list of faults and the checks of window and command line. Every hint stands at a
// cell, one at each. Asks nobody.

#include <map>
#include <string>
#include <vector>

#include "center/grid/entry_grid.h"
#include "center/lookups/account_cells.h"

namespace vicenter::center {

struct CellHint {
    int column = 0;
    std::string text;  // for users
};

// Of one line, by columns. What an account wants is known as far as it has been asked.
std::vector<CellHint> HintsOfLine(const EntryGrid& grid, int row, const AccountCells& accounts);

// Of template numbers as wholes, by the first row of each: there they stand in the column of the number.
std::map<int, std::string> HintsOfNumbers(const EntryGrid& grid, int rowCount);

}  // namespace vicenter::center
