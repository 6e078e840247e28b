#pragma once

// SET ROWCOUNT and changes. It ends queries after so many rows, which is done where they are read; a change
// is run by SQLite whole. One of more rows than that is undone and refused, since it is not what was asked
// for.

#include <cstdint>
#include <string>

#include "tsql/base/error_table.h"

namespace vicenter::tsql::engine {

// `limit` 0 for none. Before the statement's guard lets go of what it has done.
inline void CheckRowLimit(std::int64_t limit, std::int64_t rows) {
    if (limit <= 0 || rows <= limit) return;
    throw MakeError(
        40510, {},
        {"SET ROWCOUNT " + std::to_string(limit) + " before a change of " + std::to_string(rows) + " rows"});
}

}  // namespace vicenter::tsql::engine
