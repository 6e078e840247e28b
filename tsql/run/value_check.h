#pragma once

// Whether the stored values of a table are such as its columns' types can hold.

#include <string>
#include <vector>

#include "tsql/catalog/catalog.h"
#include "tsql/sqlite/database.h"

namespace vicenter::tsql::engine {

// Appends one finding a column that holds something else, for users. Throws SqlError.
void CheckValues(Database& database, const TableInfo& table, std::vector<std::string>& findings);

}  // namespace vicenter::tsql::engine
