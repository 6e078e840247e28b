#pragma once

// How an account stands in the templates of a user: on which side, and what follows it in its number. Read
// only.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vicenter::store {

// Lines of an account on one side, and one line that comes below such a one in the same number.
struct AccountUse {
    bool debit = false;
    std::string nextNumber;  // of the account below; empty for the last line of a number
    bool nextDebit = false;
};

// Each kind of use once, over the saved lines; nothing when they could not be read.
std::optional<std::vector<AccountUse>> ReadAccountUses(std::string_view accountNumber,
                                                       const std::string& userId);
// The side on which the chart of accounts keeps the balance of an account; nothing when it does not say.
std::optional<bool> ReadBalanceIsDebit(std::string_view accountNumber);

}  // namespace vicenter::store
