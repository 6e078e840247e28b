#pragma once

// Texts of one line: names, search texts, cells. Other programs put a line end behind a text that they copy.

#include <string>
#include <string_view>

namespace vicenter::entry {

// The text without the line ends behind it.
std::string_view WithoutLineEnd(std::string_view text);
// Tabs, line ends within the text and every other control character.
bool HasControlCharacter(std::string_view text);
// A character that ends a line for some program, or has no look of its own: control characters, U+2028 and
// U+2029, and those that turn the order of what is behind them.
bool BreaksOrHides(char32_t code);
// The text as a list shows it in one line: a line end as ↵, a tab as a blank, whatever else has no look of
// its own, or turns the order of what is behind it, as □.
std::string InOneLine(std::string_view text);

}  // namespace vicenter::entry
