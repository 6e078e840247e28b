#pragma once

// A column of a result: its name and type. A plain value.

#include <string>

#include "tsql/types/sql_type.h"

namespace vicenter::tsql::engine {

struct ResultColumn {
    std::string name;
    SqlType type;
    // The type's full name, made on first use: a plan answers many times.
    const std::string& TypeName() const {
        if (typeName.empty()) typeName = type.FullName();
        return typeName;
    }
    mutable std::string typeName = {};
};

}  // namespace vicenter::tsql::engine
