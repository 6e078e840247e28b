#pragma once

// Names that the file of an account set keeps for itself: tables of SQLite's and of the catalog, and the
// number of a row. Error 40510 for a table or column that is to be called so.

#include <string>
#include <string_view>

#include "automation/object.h"
#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"

namespace vicenter::tsql::engine {

inline void CheckTableName(std::string_view name) {
    const std::string lower = LowerAscii(name);
    if (lower.starts_with("sqlite_") || lower.starts_with("ts$"))
        throw MakeError(40510, {}, {"a table named " + std::string(name)});
}

inline void CheckColumnName(std::string_view name) {
    if (automation::SameName(name, "_rowid_"))
        throw MakeError(40510, {}, {"a column named " + std::string(name)});
}

}  // namespace vicenter::tsql::engine
