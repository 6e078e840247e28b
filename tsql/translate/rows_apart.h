#pragma once

// What FROM and WHERE give, as a table of its own, for what is to be done with each row once.

#include <string>

#include "tsql/translate/query_parts.h"

namespace vicenter::tsql::engine {

// The text from FROM on becomes a query under that name, with ORDER BY and LIMIT behind it; the columns of
// the sources are its columns then. Without a LIMIT SQLite would merge it with the query around it.
void SetRowsApart(Scope& scope, std::string& tail, const std::string& orderAndLimit, const std::string& name);

}  // namespace vicenter::tsql::engine
