#pragma once

// How much the account set has room for in each column of a line, said once for every way in: an import, a
// generation and the command line find what would not fit before anything is written, by row and column. What
// a person may type into a cell is less and the grid's affair: the account set keeps negative amounts, say.

#include <string>
#include <string_view>

#include "store/template_columns.h"

namespace vicenter::store {

// Digits of an amount in the account set, those behind the point included.
inline constexpr int kDecimalDigits = 28;

// Why the account set has no room for the text in that column: too long, too large; the empty text when it
// has. Numbers in plain form or with an exponent; what is no number is nothing to this rule.
std::string WhyNoRoom(const ColumnSpec& column, std::string_view text);

}  // namespace vicenter::store
