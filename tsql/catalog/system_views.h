#pragma once

// The server's own views: what scripts ask whether something exists. Constant data, readable from anywhere.

#include <vector>

#include "tsql/syntax/ast_expression.h"
#include "tsql/types/result_column.h"

namespace vicenter::tsql::engine {

// A view of the server's own catalog: its rows as SQLite SQL, and their columns.
struct SystemView {
    const char* sql;
    std::vector<ResultColumn> columns;
};
const SystemView* FindSystemView(const ObjectName& name);

}  // namespace vicenter::tsql::engine
