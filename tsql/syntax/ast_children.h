#pragma once

// What an expression is made of, one level down; for questions that are asked of every node of a tree.

#include <functional>

#include "tsql/syntax/ast_expression.h"

namespace vicenter::tsql {

// Calls `each` for every expression directly below, those of OVER and WITHIN GROUP among them. Queries within
// are not entered: HasQuery tells whether the node itself holds one.
void ForEachChild(const Expr& expression, const std::function<void(const Expr&)>& each);

// (select …), EXISTS (…), IN (select …), > ALL (…).
bool HasQuery(const Expr& expression);
// It, or anything below it.
bool HoldsQuery(const Expr& expression);

struct QueryBody;
struct SelectBody;
// The SELECT that a query begins with: it names the columns, and the table of INTO.
const SelectBody& FirstSelect(const QueryBody& body);

}  // namespace vicenter::tsql
