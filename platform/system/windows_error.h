#pragma once

// What the system last refused, for std::error_code: its text in UTF-8, and the portable condition for those
// that users meet. Not for callers outside this folder.

#include <system_error>

namespace vicenter::system::os {

std::error_code LastError();

}  // namespace vicenter::system::os
