#pragma once

// How the window calls the account set and the user that it works for.

#include <string>

namespace vicenter::center {

struct AccountNames {
    std::string accountSet;
    std::string user;
};

// A host may name both in its property string, as AcctName and UserName. Of one that does not: the file or
// the database, and the user's number; never more of the connect string.
AccountNames NamesOfAccount(const std::string& propsString);
// Of the host property string as it is now; a host that gives none has no names either.
AccountNames NamesOfAccount();

}  // namespace vicenter::center
