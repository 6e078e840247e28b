#pragma once

#include "tsql/syntax/ast_expression.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

// SameExpression where the answer decides how a statement is translated, either way: it holds for these texts
// of the literals alone, for which both are pinned.
bool SameWithTheseLiterals(TranslateContext& context, const Expr& a, const Expr& b);

}  // namespace vicenter::tsql::engine
