#pragma once

// Why a check of CheckErrorCell refuses a line, in words, and what would be accepted instead: the one wording
// for window, tooltips and the command line. Asks the account set what fits. What a column itself refuses,
// VerdictText words. User-interface thread.

#include <string>
#include <string_view>

#include "store/template_columns.h"

namespace vicenter::store {

// The texts of a line that its checks look at.
struct CheckedTexts {
    std::string_view account;
    std::string_view settlement;
    std::string_view currency;
    std::string_view unit;
    std::string_view items;
};

// accountIsSound: what the line's own account check has said. Without a sound account the other four checks
// fail for its sake, and the words say so. What cannot be read is an error (kElementNotFound).
std::string FaultText(CellCheck failed, const CheckedTexts& line, bool accountIsSound);

}  // namespace vicenter::store
