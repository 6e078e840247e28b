#pragma once

// What the patterns of templates and vouchers are told apart by: which sides of which accounts.
// User-interface thread.

#include <string>
#include <vector>

namespace vicenter::store {

// A template number's lines as sides and account codes ("借1001"), in their order.
struct KnownPattern {
    std::string templateName;
    std::string number;
    std::vector<std::string> lines;
};
// Of the user's templates and the standard one. None when they cannot be read.
std::vector<KnownPattern> ReadKnownPatterns(const std::string& userId);

}  // namespace vicenter::store
