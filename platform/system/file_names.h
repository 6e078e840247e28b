#pragma once

// Names of files made of other names.

#include <string>
#include <string_view>
#include <vector>

namespace vicenter::system {

// The name as one that every file system takes: separators, wildcards and control characters become "_",
// blanks and dots at the end go, what is too long is cut between two characters. Without an extension.
std::string SafeFileName(std::string_view name);

// The names of what stands in a folder, in no order; none when it cannot be read. Unlike the library's own
// iterators it survives refused memory: std::bad_alloc instead of the end of the process.
std::vector<std::string> NamesIn(const std::string& folder);

}  // namespace vicenter::system
