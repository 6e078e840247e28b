#pragma once

// The server's own views: what scripts ask whether something exists. Constant data, readable from anywhere.

#include <string>
#include <string_view>
#include <vector>

#include "tsql/syntax/ast_expression.h"
#include "tsql/types/result_column.h"

namespace vicenter::tsql::engine {

// A view of the server's own catalog: its rows as SQLite SQL, and their columns.
struct SystemView {
    std::string sql;
    std::vector<ResultColumn> columns;
};
const SystemView* FindSystemView(const ObjectName& name);
// The same view over the tables of a session: `tables` is SQLite's text of them, as JSON makes them; without
// the times at which they were made.
SystemView OfTemporary(const SystemView& view, const std::string& tables);
// A view of the server's that there is not: it is refused by its name, where an unknown one is an error.
bool IsServerView(const ObjectName& name);
// A column that the server's view of that name has, and ours has nothing to say in.
bool IsServerColumn(std::string_view schema, std::string_view view, std::string_view column);

}  // namespace vicenter::tsql::engine
