#pragma once

// The ledger's users by number, for lists that tell who did something. User-interface thread.

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace vicenter::store {

class UserNames {
  public:
    // Asks the account set once, for all of them. Where it has no table of users, or does not answer, none is
    // known.
    static UserNames Read();

    // Empty for one that is not known.
    const std::string& NameOf(std::int32_t userId) const;
    // "1 林晓岚"; the number alone for one that is not known.
    std::string WithNumber(std::int32_t userId) const;
    // The user of that name, when there is one and no other.
    std::optional<std::int32_t> NumberOf(const std::string& name) const;

  private:
    std::map<std::int32_t, std::string> names_;
};

}  // namespace vicenter::store
