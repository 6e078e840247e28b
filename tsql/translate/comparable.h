#pragma once

// text and ntext, which the server neither compares nor sorts: what LIKE and IS NULL say of them is all that
// a condition can.

#include <string_view>
#include <vector>

#include "tsql/base/position.h"
#include "tsql/translate/query_parts.h"

namespace vicenter::tsql::engine {

// Error 402 where one of the two is such a text; the sign as it is written.
void CheckCompared(const SqlType& left, std::string_view sign, const SqlType& right, Position where);
// Error 306: ORDER BY, GROUP BY, PARTITION BY.
void CheckSorted(const SqlType& type, Position where);
// Errors 421 and 5335: what makes one row of equal ones.
void CheckDistinct(const std::vector<Operand>& items, Position where);
void CheckSetMembers(const std::vector<Operand>& items, Position where);

}  // namespace vicenter::tsql::engine
