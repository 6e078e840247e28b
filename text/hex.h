#pragma once

// Hexadecimal digits. Pure functions.

#include <string>

#include "text/ascii.h"

namespace vicenter::text {

inline constexpr char kHexDigits[] = "0123456789ABCDEF";

// 0 to 15; -1 for a character that is no digit.
constexpr int HexValue(char c) {
    if (IsDigit(c)) return c - '0';
    const char lower = LowerAscii(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

constexpr bool IsHexDigit(char c) {
    return HexValue(c) >= 0;
}

inline void AppendHex(std::string& to, unsigned char byte) {
    to += kHexDigits[byte >> 4];
    to += kHexDigits[byte & 15];
}

}  // namespace vicenter::text
