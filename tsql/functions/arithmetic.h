#pragma once

// Arithmetic with SQL Server's overflow, scale and division rules. Operators are named by one letter: + - * /
// % and, for integers, & | ^ as well. Errors 8115 and 8134. Internal to the functions.

#include <cstdint>

#include "tsql/types/sql_type.h"
#include "tsql/types/value.h"

namespace vicenter::tsql::engine {

// Error 8115 for a result that the type does not hold.
[[noreturn]] void Overflow(const SqlType& type);

std::int64_t OfIntegers(char operation, std::int64_t a, std::int64_t b, const SqlType& type);
Decimal OfDecimals(char operation, const Decimal& a, const Decimal& b, const SqlType& type);
double OfReals(char operation, double a, double b);

}  // namespace vicenter::tsql::engine
