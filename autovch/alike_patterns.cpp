#include "autovch/alike_patterns.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace vicenter::autovch {

namespace {

constexpr std::size_t kFewestLinesToBeNear = 3;  // of the longer one

// Spread over all bits, so that sums of different lines hardly ever meet; what meets is compared.
std::uint64_t HashOf(const std::string& line) {
    std::uint64_t hash = std::hash<std::string>()(line) + 0x9E3779B97F4A7C15;
    hash = (hash ^ (hash >> 30)) * 0xBF58476D1CE4E5B9;
    hash = (hash ^ (hash >> 27)) * 0x94D049BB133111EB;
    return hash ^ (hash >> 31);
}

// Lines of one that the other has not, as often as each stands there. Both sorted.
std::size_t LinesBeyond(const std::vector<std::string>& of, const std::vector<std::string>& other) {
    std::vector<std::string> beyond;
    std::set_difference(of.begin(), of.end(), other.begin(), other.end(), std::back_inserter(beyond));
    return beyond.size();
}

// Calls take(line) for each distinct line of a sorted list.
template <class Take>
void ForEachDistinct(const std::vector<std::string>& sorted, const Take& take) {
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        if (i == 0 || sorted[i] != sorted[i - 1]) take(sorted[i]);
    }
}

}  // namespace

AlikePatterns::Sum AlikePatterns::SumOf(const std::vector<std::string>& lines) {
    Sum sum = 0;
    for (const std::string& line : lines)
        sum += HashOf(line);
    return sum;
}

AlikePatterns::AlikePatterns(const std::vector<store::KnownPattern>& known) : known_(known) {
    sorted_.reserve(known.size());
    for (const store::KnownPattern& pattern : known) {
        const auto place = static_cast<std::uint32_t>(sorted_.size());
        std::vector<std::string>& lines = sorted_.emplace_back(pattern.lines);
        std::sort(lines.begin(), lines.end());
        const Sum sum = SumOf(lines);
        whole_[sum].push_back(place);
        if (lines.size() < kFewestLinesToBeNear) continue;
        ForEachDistinct(lines,
                        [&](const std::string& line) { lessOne_[sum - HashOf(line)].push_back(place); });
    }
}

std::string AlikePatterns::Place(std::uint32_t pattern) const {
    return "“" + known_[pattern].templateName + "” " + known_[pattern].number + " 号";
}

std::string AlikePatterns::WordsFor(const std::vector<std::string>& lines) const {
    std::vector<std::string> own = lines;
    std::sort(own.begin(), own.end());
    const Sum sum = SumOf(own);
    std::size_t nearest = known_.size();
    // The first pattern by that sum that is meant, when it stands before the nearest one so far.
    const auto look = [&](const Places& places, Sum wanted, const auto& isMeant) {
        const auto found = places.find(wanted);
        if (found == places.end()) return;
        for (const std::uint32_t pattern : found->second) {
            if (pattern >= nearest) return;
            if (isMeant(sorted_[pattern])) nearest = pattern;
        }
    };
    look(whole_, sum, [&](const std::vector<std::string>& other) { return other == own; });
    if (nearest < known_.size()) return "与" + Place(static_cast<std::uint32_t>(nearest)) + "相同";
    const auto isNear = [&](const std::vector<std::string>& other) {
        return std::max(own.size(), other.size()) >= kFewestLinesToBeNear && LinesBeyond(own, other) <= 1 &&
               LinesBeyond(other, own) <= 1;
    };
    if (own.size() + 1 >= kFewestLinesToBeNear) look(lessOne_, sum, isNear);
    if (own.size() >= kFewestLinesToBeNear) {
        ForEachDistinct(own, [&](const std::string& line) {
            look(whole_, sum - HashOf(line), isNear);
            look(lessOne_, sum - HashOf(line), isNear);
        });
    }
    return nearest < known_.size() ? "与" + Place(static_cast<std::uint32_t>(nearest)) + "相近"
                                   : std::string();
}

}  // namespace vicenter::autovch
