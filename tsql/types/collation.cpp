#include "tsql/types/collation.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

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

constexpr bool RanksArePrintableAscii() {
    for (std::size_t byte = 0; byte < kRanks.size(); ++byte) {
        if ((kRanks[byte] != 0) != (byte >= ' ' && byte <= '~')) return false;
    }
    return true;
}
static_assert(RanksArePrintableAscii());

// Eight bytes with one value each.
constexpr std::uint64_t Eight(std::uint64_t byte) {
    return byte * 0x0101010101010101U;
}

// Whether one of eight bytes is none of printable ASCII, which has ranks from blank to '~'. A borrow can only
// come of a byte that is none itself.
constexpr bool HasUnranked(std::uint64_t eight) {
    const std::uint64_t belowBlank = eight - Eight(' ');
    const std::uint64_t aboveTilde = eight + Eight(0x7F - '~');
    return ((belowBlank | aboveTilde | eight) & Eight(0x80)) != 0;
}

constexpr std::size_t kEight = sizeof(std::uint64_t);

std::uint64_t EightAt(std::string_view text, std::size_t at) {
    std::uint64_t eight;
    std::memcpy(&eight, text.data() + at, sizeof eight);
    return eight;
}

bool IsRanked(std::string_view text) {
    if (text.size() < kEight) {
        return std::all_of(text.begin(), text.end(),
                           [](char c) { return kRanks[static_cast<unsigned char>(c)] != 0; });
    }
    // The last eight may overlap those before them.
    for (std::size_t at = 0; at + kEight < text.size(); at += kEight) {
        if (HasUnranked(EightAt(text, at))) return false;
    }
    return !HasUnranked(EightAt(text, text.size() - kEight));
}

}  // namespace

int CompareTexts(const TextCollation& collation, std::string_view a, std::string_view b) {
    a = WithoutTrailingBlanks(a);
    b = WithoutTrailingBlanks(b);
    // To their ends: a mark behind the common head may change the order of characters before it.
    if (!IsRanked(a) || !IsRanked(b)) return a == b ? 0 : collation.Compare(a, b);
    const std::size_t common = std::min(a.size(), b.size());
    std::size_t at = 0;
    while (at + kEight <= common && EightAt(a, at) == EightAt(b, at))
        at += kEight;
    for (; at < common; ++at) {
        const int left = kRanks[static_cast<unsigned char>(a[at])];
        const int right = kRanks[static_cast<unsigned char>(b[at])];
        if (left != right) return left - right;
    }
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

std::string_view WithoutLoneBlank(const TextCollation& collation, std::string_view text) {
    return text.size() == 1 && CompareTexts(collation, text, {}) == 0 ? std::string_view() : text;
}

}  // namespace vicenter::tsql::engine
