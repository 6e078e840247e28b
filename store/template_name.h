#pragma once

// What a template may be called, by one rule for whoever names one. Stateless.

#include <cstddef>
#include <string>
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

// Why no template can be made under the name, as whoever makes one tells it; empty for a name that it may
// have.
std::string WhyNotName(std::string_view name);

}  // namespace vicenter::store
