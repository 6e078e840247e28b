#pragma once

// Text by UTF-16 code units, which is how SQL Server counts length, SUBSTRING and CHARINDEX; texts are UTF-8.
// A character outside of the basic plane counts two and is never cut in half. Pure functions.

#include <cstddef>
#include <string>
#include <string_view>

#include "text/ascii.h"

namespace vicenter::tsql::engine {

// Bytes of the character that begins with this byte; a stray byte counts as one character.
std::size_t CharacterBytes(std::string_view text, std::size_t at);
std::size_t UnitCount(std::string_view text);
// The longest head of at most that many units.
std::string_view HeadUnits(std::string_view text, std::size_t units);
// The rest behind that many units.
std::string_view TailUnits(std::string_view text, std::size_t units);

// At every comparison of texts: without a search for each character.
inline std::string_view WithoutTrailingBlanks(std::string_view text) {
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}
std::string_view WithoutLeadingBlanks(std::string_view text);
using text::LowerAscii;
std::string UpperAscii(std::string_view text);

}  // namespace vicenter::tsql::engine
