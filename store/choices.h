#pragma once

// What may be chosen from in the account set, for whoever fills in lines elsewhere. User-interface thread.

#include <string>
#include <vector>

namespace vicenter::store {

struct Choices {
    std::vector<std::string> accountNumbers;  // of accounts that take entries
    std::vector<std::string> accountNames;    // of the same
    std::vector<std::string> settlements;
    std::vector<std::string> currencies;
    std::vector<std::string> units;
};
// Empty lists where nothing can be read.
Choices ReadChoices();

}  // namespace vicenter::store
