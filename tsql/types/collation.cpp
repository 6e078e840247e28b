#include "tsql/types/collation.h"

#include <array>
#include <cstdint>

#include "tsql/base/text_units.h"

namespace vicenter::tsql::engine {

namespace {

// Rank of the characters that one sees in codes: marks before digits before letters, as the collation has
// them (a test compares). 0 for every other byte.
constexpr std::array<std::uint8_t, 256> MakeRanks() {
    constexpr std::string_view kOrder =
        " _-,;:!?.'\"()[]{}@*/\\&#%`^+<=>|~$0123456789abcdefghijklmnopqrstuvwxyz";
    std::array<std::uint8_t, 256> ranks{};
    for (std::size_t i = 0; i < kOrder.size(); ++i) {
        const auto c = static_cast<unsigned char>(kOrder[i]);
        ranks[c] = static_cast<std::uint8_t>(i + 1);
        if (c >= 'a' && c <= 'z') ranks[c & ~0x20U] = ranks[c];
    }
    return ranks;
}
constexpr std::array<std::uint8_t, 256> kRanks = MakeRanks();

}  // namespace

int CompareTexts(const TextCollation& collation, std::string_view a, std::string_view b) {
    a = WithoutTrailingBlanks(a);
    b = WithoutTrailingBlanks(b);
    if (a == b) return 0;
    int difference = 0;
    std::size_t at = 0;
    for (; at < a.size() && at < b.size(); ++at) {
        const int left = kRanks[static_cast<unsigned char>(a[at])];
        const int right = kRanks[static_cast<unsigned char>(b[at])];
        if (left == 0 || right == 0) return collation.Compare(a, b);
        if (difference == 0) difference = left - right;
    }
    // What follows must be plain, too: a mark behind the common head may change the order of characters
    // before it.
    for (std::size_t rest = at; rest < a.size(); ++rest) {
        if (kRanks[static_cast<unsigned char>(a[rest])] == 0) return collation.Compare(a, b);
    }
    for (std::size_t rest = at; rest < b.size(); ++rest) {
        if (kRanks[static_cast<unsigned char>(b[rest])] == 0) return collation.Compare(a, b);
    }
    if (difference != 0) return difference;
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

std::string_view WithoutLoneBlank(const TextCollation& collation, std::string_view text) {
    return text.size() == 1 && CompareTexts(collation, text, {}) == 0 ? std::string_view() : text;
}

}  // namespace vicenter::tsql::engine
