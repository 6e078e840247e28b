#pragma once

// Characters of ASCII, whatever the locale: bytes of other characters are never letters or digits and stay as
// they are. Pure functions.

#include <cstddef>
#include <string>
#include <string_view>

namespace vicenter::text {

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char UpperAscii(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr bool IsLetter(char c) {
    return LowerAscii(c) >= 'a' && LowerAscii(c) <= 'z';
}

inline std::string LowerAscii(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        c = LowerAscii(c);
    return lower;
}

// The same but for the case of letters.
constexpr bool SameAscii(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (LowerAscii(a[i]) != LowerAscii(b[i])) return false;
    }
    return true;
}

}  // namespace vicenter::text
