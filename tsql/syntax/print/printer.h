#pragma once

// From syntax tree back to T-SQL: keywords in lower case, one statement a line, blocks indented. What is
// printed parses again to the same tree, positions aside.

#include <string>

#include "tsql/syntax/ast.h"

namespace vicenter::tsql {

std::string Print(const Expr& expr);
std::string Print(const Query& query);
std::string Print(const TypeName& type);
std::string Print(const ObjectName& name);
// Without a closing semicolon, but for MERGE, which is none without it.
std::string Print(const Statement& statement);
std::string Print(const TableDefinition& definition);
std::string Print(const Batch& batch);

}  // namespace vicenter::tsql
