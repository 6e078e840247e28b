#pragma once

// What the cells of a line can hold by its account. Read only.

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vicenter::store {

struct AccountNeeds {
    bool settlement = false;  // a bank account
    bool currency = false;    // not kept in the first currency alone
    bool items = false;
    bool units = false;
};

// Nothing for what is no detail account, and when it could not be read.
std::optional<AccountNeeds> ReadAccountNeeds(std::string_view accountNumber);
// Of many by one question, by the number that was asked for; those of which nothing is known are not there.
std::map<std::string, AccountNeeds, std::less<>> ReadNeedsOfAccounts(const std::vector<std::string>& numbers);

}  // namespace vicenter::store
