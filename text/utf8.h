#pragma once

// Single steps of UTF-8, for loops that go through a text. ICU's macros do the work; they are in its headers
// alone, so nothing has to be linked for them.
//
// Only the shortest form of a character counts, and no halves of UTF-16 pairs: whatever else there is, is
// malformed byte by byte. Pure functions.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <unicode/utf8.h>

namespace vicenter::text {

inline constexpr char32_t kReplacement = 0xFFFD;

struct CodePoint {
    char32_t code = kReplacement;
    std::size_t length = 1;  // bytes read; a malformed byte counts alone
    bool valid = false;
};

// The character at a place within the text.
inline CodePoint ReadUtf8(std::string_view text, std::size_t at) {
    const auto first = static_cast<unsigned char>(text[at]);
    if (first < 0x80) return {first, 1, true};
    // A character is at most four bytes long, and the macro counts with 32 bits.
    const std::string_view rest = text.substr(at, U8_MAX_LENGTH);
    const auto length = static_cast<std::int32_t>(rest.size());
    std::int32_t next = 0;
    UChar32 code = 0;
    U8_NEXT(rest.data(), next, length, code);
    if (code < 0) return {};
    return {static_cast<char32_t>(code), static_cast<std::size_t>(next), true};
}

// The half of a pair or a code past the last becomes U+FFFD.
inline void AppendUtf8(std::string& to, char32_t code) {
    if (code > 0x10FFFF || U_IS_SURROGATE(code)) code = kReplacement;
    char bytes[U8_MAX_LENGTH];
    std::size_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, code);
    to.append(bytes, length);
}

// UTF-16 code units of a character.
constexpr std::size_t CodeUnits(char32_t code) {
    return code >= 0x10000 ? 2 : 1;
}

}  // namespace vicenter::text
