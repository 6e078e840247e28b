#pragma once

// What the host's rights system says of its user. User-interface thread.

#include <string>

#include "automation/object.h"

namespace vicenter::center {

inline constexpr const char* kNoRight = "对不起，你没有相应的权限！";

// The right to change templates.
struct TemplateRight {
    bool granted = false;
    std::string failure;             // why nobody can say, for users; then it is not granted
    automation::ObjectRef security;  // that was asked; none where there is none
};
TemplateRight AskTemplateRight();

// Every right of the ledger, as an administrator has it. Errors of the host pass.
bool HasEveryRight();

}  // namespace vicenter::center
