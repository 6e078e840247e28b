#pragma once

// Single steps of UTF-8 and UTF-16, for the loops of the readers and writers that cannot afford a text at a
// time.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vicenter::office {

struct CodePoint {
    std::uint32_t code = 0xFFFD;
    std::size_t length = 1;  // bytes read; a malformed byte counts alone
    bool valid = false;
};

inline CodePoint ReadUtf8(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
    const unsigned char first = byte(0);
    if (first < 0x80) return {first, 1, true};
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || at + length > text.size()) return {};
    std::uint32_t code = first & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return {};
        code = code << 6 | (byte(i) & 0x3Fu);
    }
    constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kLeast[length] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) return {};
    return {code, length, true};
}

// A surrogate or a code past the last becomes U+FFFD.
inline void AppendUtf8(std::string& to, std::uint32_t code) {
    if (code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) code = 0xFFFD;
    if (code < 0x80) {
        to += static_cast<char>(code);
    } else if (code < 0x800) {
        to += static_cast<char>(0xC0 | code >> 6);
        to += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        to += static_cast<char>(0xE0 | code >> 12);
        to += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        to += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        to += static_cast<char>(0xF0 | code >> 18);
        to += static_cast<char>(0x80 | (code >> 12 & 0x3F));
        to += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        to += static_cast<char>(0x80 | (code & 0x3F));
    }
}

// UTF-16 code units that the text takes.
inline std::size_t CountCodeUnits(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size();) {
        const CodePoint next = ReadUtf8(text, at);
        count += next.code >= 0x10000 ? 2 : 1;
        at += next.length;
    }
    return count;
}

}  // namespace vicenter::office
