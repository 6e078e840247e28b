#pragma once

// What depends on a table or a column by a text that names it.

#include <string>
#include <string_view>

#include "tsql/catalog/catalog.h"
#include "tsql/run/program.h"

namespace vicenter::tsql::engine {

// The text has a name like that in it, as far as its words tell.
bool Mentions(const std::string& text, std::string_view name);

// The view WITH SCHEMABINDING that names the table or view, and with `column` the column as well; null where
// there is none.
const ModuleInfo* BoundView(const Catalog& catalog, ProgramStore& programs, std::string_view name,
                            std::string_view column = {});

// The foreign key that refers to a table by a key of it, while the table has no other key of these columns;
// the table is null where there is none.
struct Reference {
    const TableInfo* table = nullptr;
    const ForeignKeyInfo* key = nullptr;
};
Reference ReferenceTo(const Catalog& catalog, const TableInfo& table, const KeyInfo& key);

}  // namespace vicenter::tsql::engine
