#pragma once

// UTF-8 text by characters. A character is a code point; a malformed byte counts as one character.

#include <cstddef>
#include <string>
#include <string_view>

namespace vicenter::system {

std::size_t CharacterCount(std::string_view text);
// UTF-16 code units of the text: what SQL Server and Excel count as its length.
std::size_t CodeUnitCount(std::string_view text);
// The longest head of at most `count` characters.
std::string_view Head(std::string_view text, std::size_t count);
bool IsValidUtf8(std::string_view text);
std::u16string ToUtf16(std::string_view text);    // malformed bytes become U+FFFD
std::string FromUtf16(std::u16string_view text);  // lone surrogates become U+FFFD
// Blanks (U+0020) cut off at both ends: the trimming of every text that goes into SQL.
std::string_view TrimBlanks(std::string_view text);
// The position of `part` in `text`, ASCII letters and simple case pairs compared without case; npos if
// absent.
std::size_t FindIgnoringCase(std::string_view text, std::string_view part, std::size_t from = 0);

}  // namespace vicenter::system
