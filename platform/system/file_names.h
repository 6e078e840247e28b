#pragma once

// Names of files made of other names.

#include <string>
#include <string_view>

namespace vicenter::system {

// The name as one that every file system takes: separators, wildcards and control characters become "_",
// blanks and dots at the end go, what is too long is cut between two characters. Without an extension.
std::string SafeFileName(std::string_view name);

}  // namespace vicenter::system
