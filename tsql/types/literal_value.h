#pragma once

// What a literal of a statement is worth. Pure functions; they throw SqlError without a line.

#include <string_view>

#include "tsql/syntax/ast_expression.h"
#include "tsql/types/value.h"

namespace vicenter::tsql::engine {

// The type and value of a literal.
SqlType LiteralType(LiteralKind kind, std::string_view text);
Value ValueOfLiteral(LiteralKind kind, std::string_view text, bool negated = false);

}  // namespace vicenter::tsql::engine
