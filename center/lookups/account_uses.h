#pragma once

// How the user has entered accounts until now: on which side, and with which account below. What the account
// set has said of an account is remembered until another template is opened. Part of frmVICenter;
// user-interface thread.

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/account_uses.h"

namespace vicenter::center {

// What is known of one account. Nothing of what could not be read.
struct KnownUses {
    std::vector<store::AccountUse> uses;
    std::optional<bool> balanceIsDebit;  // asked for as long as there are no uses
};

class AccountUses {
  public:
    // Asks the account set unless it has been asked; false when it had.
    bool Ask(std::string_view accountNumber, const std::string& userId);
    const KnownUses* IfKnown(std::string_view accountNumber) const;
    void Forget() { known_.clear(); }

  private:
    std::map<std::string, KnownUses, std::less<>> known_;
};

}  // namespace vicenter::center
