#pragma once

// text and ntext, which the server neither compares nor sorts, and keeps in no variable.

#include "tsql/types/sql_type.h"

namespace vicenter::tsql::engine {

inline bool IsOldText(const SqlType& type) {
    return type.kind == TypeKind::kText || type.kind == TypeKind::kNText;
}

}  // namespace vicenter::tsql::engine
