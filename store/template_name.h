#pragma once

// What a template may be called, by one rule for whoever names one. Stateless.

#include <cstddef>
#include <string_view>

namespace vicenter::store {

// As the account set's column is wide, in UTF-16 code units.
inline constexpr std::size_t kLongestTemplateName = 255;

enum class NameFault {
    None,
    Blank,             // nothing, or blanks of whatever width
    ControlCharacter,  // a tab, a line end in the middle
    TooLong,
};
// A line end behind the name is to be gone by then.
NameFault FaultOfName(std::string_view name);

}  // namespace vicenter::store
