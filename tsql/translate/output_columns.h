#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "tsql/syntax/ast_statement.h"

namespace vicenter::tsql::engine {

// Hears of every column that OUTPUT names and how it is qualified; an empty name is all columns.
using LookAtTold =
    std::function<void(const std::string& qualifier, const std::string& column, Position where)>;
void VisitTold(const OutputClause& output, const LookAtTold& look);

// OUTPUT names nothing but the columns of that pseudo table, inserted or deleted, which SQLite gives back by
// itself. Names by themselves are its own where the statement has no other table.
bool TellsOnlyOf(std::string_view pseudoTable, const OutputClause& output, bool hasFrom);
// It names columns of that source, or some by themselves, which may be.
bool MayTellOf(const OutputClause& output, std::string_view source);

}  // namespace vicenter::tsql::engine
