#pragma once

// Conversions between types as CAST, CONVERT, assignments and columns make them. Pure functions; they throw
// SqlError with SQL Server's numbers and without a line, which the statement adds.

#include <string>
#include <string_view>

#include "tsql/types/date_text.h"
#include "tsql/types/value.h"

namespace vicenter::tsql::engine {

// CAST and CONVERT: a text that is too long is cut. The format is the order in which a text has day, month
// and year.
Value Convert(const Value& value, const SqlType& from, const SqlType& to, int style = 0,
              DateFormat format = DateFormat::kMdy);

// Where a value is to be stored.
struct ColumnTarget {
    std::string_view table;
    std::string_view column;
    SqlType type;
    bool nullable = true;
};

// A value on its way into a column: NULL and texts that are too long are refused (515, 2628). The operation
// is the word of message 515: INSERT or UPDATE.
Value ConvertForColumn(const Value& value, const SqlType& from, const ColumnTarget& target,
                       std::string_view operation, DateFormat format = DateFormat::kMdy);

// A number, already of the type's scale, is within the type's range.
bool FitsDecimal(const Decimal& scaled, const SqlType& type);

// The name of a type in error messages: decimal is called numeric there.
std::string MessageName(const SqlType& type);

// Nothing needs to be done to make a value of the one type a value of the other.
bool SameRepresentation(const SqlType& from, const SqlType& to);

// Throws 257 or 206 when SQL Server makes that conversion only by CAST, or not at all (529 for an explicit
// one).
void CheckConversion(const SqlType& from, const SqlType& to, bool isExplicit);

}  // namespace vicenter::tsql::engine
