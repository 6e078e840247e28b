#pragma once

#include "tsql/syntax/ast_statement.h"
#include "tsql/translate/query_parts.h"

namespace vicenter::tsql::engine {

// It names a column of deleted, or all of them.
bool TellsOfOldRows(const OutputClause& output);
// OUTPUT of UPDATE and DELETE tells of the rows of their table alone: error 40510 for a column of another one
// in FROM.
void RefuseColumnsOfFrom(const OutputClause& output, const Scope& scope);

}  // namespace vicenter::tsql::engine
