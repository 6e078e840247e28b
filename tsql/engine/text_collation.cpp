#include "tsql/engine/text_collation.h"

#include <array>
#include <cstdint>

#include "tsql/engine/text_units.h"

namespace vicenter::tsql::engine {

namespace {

// Rank of digits and letters, 0 for every other byte.
constexpr std::array<std::uint8_t, 256> MakeRanks() {
    std::array<std::uint8_t, 256> ranks{};
    for (std::size_t c = '0'; c <= '9'; ++c)
        ranks[c] = static_cast<std::uint8_t>(1 + c - '0');
    for (std::size_t c = 'a'; c <= 'z'; ++c)
        ranks[c] = static_cast<std::uint8_t>(11 + c - 'a');
    for (std::size_t c = 'A'; c <= 'Z'; ++c)
        ranks[c] = static_cast<std::uint8_t>(11 + c - 'A');
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

}  // namespace vicenter::tsql::engine
