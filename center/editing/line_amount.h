#pragma once

// The amount that the other numbers of a line make: its quantity times its price, or its rate times the
// amount in its currency, rounded to the cent. Pure functions.

#include <optional>
#include <string>

#include "center/grid/entry_grid.h"

namespace vicenter::center {

// A column whose number is a factor of the amount.
bool MakesAmount(int gridColumn);
// What the factors of a line without an amount make; nothing when one of them is missing, and for what the
// column would not take.
std::optional<std::string> AmountToFill(const EntryGrid& grid, int row);
// What the factors make instead of the amount that is there, for users; empty while they agree.
std::string AmountHint(const EntryGrid& grid, int row);

}  // namespace vicenter::center
