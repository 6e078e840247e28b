#pragma once

// What the expressions of a table's definition may hold: values of the row, and nothing that is worked out
// over rows. Asked before they are translated, so that SQLite never sees what it would take otherwise.

#include <string_view>

#include "tsql/catalog/catalog.h"
#include "tsql/syntax/ast_expression.h"

namespace vicenter::tsql::engine {

enum class DefinitionKind { kComputed, kDefault, kCheck };

struct DefinitionPlace {
    DefinitionKind kind = DefinitionKind::kCheck;
    const TableInfo* table = nullptr;
    std::string_view statement;  // CREATE TABLE, ALTER TABLE, DECLARE
    // The column that a CHECK or a DEFAULT stands behind; empty for a constraint of the table.
    std::string_view column;
};

// Throws 112, 128, 175, 1046, 1759, 4108 or 8141.
void CheckDefinition(const DefinitionPlace& place, const Expr& expression);

}  // namespace vicenter::tsql::engine
