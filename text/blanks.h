#pragma once

// Cutting off blanks. Which characters are blanks differs from rule to rule, so each says it by name. Pure
// functions; what they give refers to the text that they were given.

#include <string_view>

namespace vicenter::text {

// U+0020 alone: what is cut off texts that go into SQL, numbers and dates.
inline constexpr std::string_view kSpace = " ";
// Within a line.
inline constexpr std::string_view kSpaceAndTab = " \t";
// The blanks of XML, JSON and of texts that become numbers.
inline constexpr std::string_view kSpacesAndLineEnds = " \t\r\n";
// All blanks of ASCII.
inline constexpr std::string_view kAllBlanks = " \t\r\n\f\v";

constexpr std::string_view WithoutLeading(std::string_view text, std::string_view blanks) {
    while (!text.empty() && blanks.find(text.front()) != std::string_view::npos)
        text.remove_prefix(1);
    return text;
}

constexpr std::string_view WithoutTrailing(std::string_view text, std::string_view blanks) {
    while (!text.empty() && blanks.find(text.back()) != std::string_view::npos)
        text.remove_suffix(1);
    return text;
}

constexpr std::string_view Trimmed(std::string_view text, std::string_view blanks) {
    return WithoutTrailing(WithoutLeading(text, blanks), blanks);
}

}  // namespace vicenter::text
