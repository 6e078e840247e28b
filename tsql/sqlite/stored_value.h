#pragma once

// Values on their way into and out of SQLite. What a value looks like there depends on the storage class of
// its type: decimals and dates are texts (see docs/account-set-format.md).

#include "tsql/types/value.h"

struct sqlite3_context;
struct sqlite3_stmt;
struct sqlite3_value;

namespace vicenter::tsql::engine {

// SQLite answers refused memory by values that read as NULL and by binding nothing; each of these throws
// std::bad_alloc instead, so that no NULL is stored for what was never bound.
void CheckBound(int code);  // of a sqlite3_bind_… function

Value ReadColumn(sqlite3_stmt* statement, int column, const SqlType& type);
Value ReadArgument(sqlite3_value* value, const SqlType& type);
void BindValue(sqlite3_stmt* statement, int parameter, const Value& value, const SqlType& type);
void ReturnValue(sqlite3_context* context, const Value& value, const SqlType& type);

}  // namespace vicenter::tsql::engine
