#pragma once

// SET IDENTITY_INSERT is of one table and ends with it. The option bears a name, so that a new table of that
// name begins without it: for whoever has called, too, whose #table of the name is another one.

#include <string_view>

#include "automation/object.h"
#include "tsql/run/frame.h"

namespace vicenter::tsql::engine {

inline void BeginWithoutIdentityInsert(Frame* frame, std::string_view table) {
    const bool isTemporary = table.starts_with('#');
    for (; frame != nullptr; frame = isTemporary ? nullptr : frame->caller) {
        if (automation::SameName(frame->options.identityInsert, table)) frame->options.identityInsert.clear();
    }
}

}  // namespace vicenter::tsql::engine
