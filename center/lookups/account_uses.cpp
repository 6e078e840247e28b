#include "center/lookups/account_uses.h"

#include <utility>

namespace vicenter::center {

const KnownUses* AccountUses::IfKnown(std::string_view accountNumber) const {
    const auto known = known_.find(accountNumber);
    return known == known_.end() ? nullptr : &known->second;
}

bool AccountUses::Ask(std::string_view accountNumber, const std::string& userId) {
    if (accountNumber.empty() || userId.empty() || IfKnown(accountNumber) != nullptr) return false;
    KnownUses known;
    if (auto uses = store::ReadAccountUses(accountNumber, userId)) known.uses = std::move(*uses);
    if (known.uses.empty()) known.balanceIsDebit = store::ReadBalanceIsDebit(accountNumber);
    known_.emplace(accountNumber, std::move(known));
    return true;
}

}  // namespace vicenter::center
