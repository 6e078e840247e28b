#pragma once

// What the cells of a line can hold by its account. Read only.

#include <optional>
#include <string_view>

namespace vicenter::store {

struct AccountNeeds {
    bool settlement = false;  // a bank account
    bool currency = false;    // not kept in the first currency alone
    bool items = false;
    bool units = false;
};

// Nothing for what is no detail account, and when it could not be read.
std::optional<AccountNeeds> ReadAccountNeeds(std::string_view accountNumber);

}  // namespace vicenter::store
