#pragma once

// What reading and writing JSON strings share: runs of plain characters are found eight bytes at a time.

#include <bit>
#include <cstdint>
#include <cstring>

namespace vicenter::support {

// A quote, a backslash or a control character ends a run of plain characters.
inline bool IsSpecial(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\';
}

// The first special character of [text, end), or end.
inline const char* FindSpecial(const char* text, const char* end) {
    if constexpr (std::endian::native == std::endian::little) {
        constexpr std::uint64_t kOnes = 0x0101010101010101U;
        constexpr std::uint64_t kHighs = 0x8080808080808080U;
        while (end - text >= 8) {
            std::uint64_t word = 0;
            std::memcpy(&word, text, 8);
            const std::uint64_t quote = word ^ (kOnes * '"');
            const std::uint64_t backslash = word ^ (kOnes * '\\');
            // A byte's high bit is set where it is below the limit; borrows spoil only bytes behind a hit.
            const std::uint64_t hits = (((word - kOnes * 0x20) & ~word) | ((quote - kOnes) & ~quote) |
                                        ((backslash - kOnes) & ~backslash)) &
                                       kHighs;
            if (hits != 0) return text + std::countr_zero(hits) / 8;
            text += 8;
        }
    }
    while (text != end && !IsSpecial(*text))
        ++text;
    return text;
}

}  // namespace vicenter::support
