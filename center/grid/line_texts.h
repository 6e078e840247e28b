#pragma once

// Texts of a line as what they mean: its template number and its amounts.

#include <optional>
#include <string_view>

#include "automation/decimal.h"
#include "center/grid/entry_grid.h"

namespace vicenter::center {

// The template number of a row as the account set will know it: "01" and "1" are one.
std::string_view NumberOfRow(const EntryGrid& grid, int row);
// Nothing for the empty text and for all that is no plain number.
std::optional<automation::Decimal> DecimalIn(std::string_view text);

}  // namespace vicenter::center
