#pragma once

// Functions that give another value whenever they run: NEWID in each row, RAND once in a statement. SQLite
// runs what a query in FROM gives as often as the query around it names it, unless it is kept apart.

#include <string>
#include <string_view>

namespace vicenter::tsql::engine {

inline constexpr const char* kNewIdName = "ts_newid";
inline constexpr const char* kRandName = "ts_rand";

inline bool IsVolatile(std::string_view sql) {
    return sql.find(kNewIdName) != std::string_view::npos || sql.find(kRandName) != std::string_view::npos;
}

}  // namespace vicenter::tsql::engine
