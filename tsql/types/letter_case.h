#pragma once

// Capital and small letters of ASCII, Latin, Greek and Cyrillic, and of full width: what UPPER and LOWER
// make. Pure.

#include <string>
#include <string_view>

namespace vicenter::tsql::engine {

std::string WithCase(std::string_view text, bool upper);

}  // namespace vicenter::tsql::engine
