#pragma once

// What becomes a text. Steps of Convert, which has seen to NULL. Pure functions; they throw as Convert does.

#include <string>
#include <string_view>

#include "tsql/types/value.h"

namespace vicenter::tsql::engine {

// As the server writes a value, however long that is.
std::string ToPlainText(const Value& value, const SqlType& from, const SqlType& to, int style);
bool IsTooLong(std::string_view text, const SqlType& to);
// With the blanks that fill a char or an nchar.
std::string Padded(std::string text, const SqlType& to);
// Cut, marked by a star or refused where it is too long, as its own type wants it.
Value ToText(const Value& value, const SqlType& from, const SqlType& to, int style);

}  // namespace vicenter::tsql::engine
