#pragma once

// What SET has turned on and off. A plain value: a call gets a copy of its caller's, and what it sets ends
// with it.

#include <cstdint>
#include <string>

#include "tsql/types/date_text.h"

namespace vicenter::tsql::engine {

struct SetOptions {
    bool noCount = false;
    bool exactAbort = false;         // XACT_ABORT
    std::int64_t rowCountLimit = 0;  // 0 for none
    std::string identityInsert;      // the table whose identity column takes given values; empty for none
    int lockTimeoutMilliseconds = 0;
    DateFormat dateFormat = DateFormat::kMdy;
};

}  // namespace vicenter::tsql::engine
