#pragma once

// Why something could not be read, for message boxes. User-interface thread.

#include <string>

namespace vicenter::store {

// The sentence, and below it in the user's language what the account set or the host said when the last query
// failed; the sentence alone when none has failed since ForgetFailure.
std::string WithReason(const std::string& sentence);

}  // namespace vicenter::store
