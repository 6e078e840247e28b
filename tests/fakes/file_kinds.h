#pragma once

// Files that are no ordinary ones, as each system has them. Links are made by administrators alone on
// Windows, so that tests that need one are for other systems.

#include <string>

namespace vicenter::fakes {

#ifdef _WIN32
inline const std::string kDevice = "NUL";
#else
inline const std::string kDevice = "/dev/null";
#endif

}  // namespace vicenter::fakes
