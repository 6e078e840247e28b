#pragma once

// What becomes a number. Steps of Convert, which has seen to NULL; the type that is wanted is an integer, an
// exact and a floating one in turn. Pure functions; they throw as Convert does.

#include "tsql/types/value.h"

namespace vicenter::tsql::engine {

Value ToInteger(const Value& value, const SqlType& from, const SqlType& to);
Value ToDecimal(const Value& value, const SqlType& from, const SqlType& to);
Value ToReal(const Value& value, const SqlType& from, const SqlType& to);

}  // namespace vicenter::tsql::engine
