#pragma once

// The server's error for a constraint that SQLite has found broken: which key, which values, which other
// table.

#include <string>

#include "tsql/catalog/catalog.h"
#include "tsql/functions/functions.h"
#include "tsql/sqlite/database.h"
#include "tsql/translate/translation.h"

namespace vicenter::tsql::engine {

// `text` is what SQLite says of it: "UNIQUE constraint failed: t.a, t.b".
SqlError ConstraintError(const Catalog& catalog, const FunctionServices& services,
                         const Translation& translation, FailureKind kind, const std::string& text);

// A row of the table refers to nothing.
SqlError ForeignKeyError(std::string_view operation, const ForeignKeyInfo& key);

// A change of a table has broken the key of that or of another table.
SqlError BrokenKeyError(std::string_view operation, const TableInfo& changed, const TableInfo& owner,
                        const ForeignKeyInfo& key);

// A row that a CHECK of the table does not let in.
SqlError CheckError(std::string_view operation, const TableInfo& table, std::string_view check);

}  // namespace vicenter::tsql::engine
