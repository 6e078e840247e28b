#pragma once

// Which pattern of the user's templates a voucher is like, found without holding every one against every
// other: patterns are looked up by a sum over their lines, which is the same in any order and from which one
// line can be taken away. A value; refers to the known patterns for its life.

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "store/template_patterns.h"

namespace vicenter::autovch {

class AlikePatterns {
  public:
    explicit AlikePatterns(const std::vector<store::KnownPattern>& known);

    // What users are told: the first pattern of the same lines in any order, or else the first of which all
    // lines but one are the same, where there are three and more; the empty text when there is none.
    std::string WordsFor(const std::vector<std::string>& lines) const;

  private:
    using Sum = std::uint64_t;
    using Places = std::unordered_map<Sum, std::vector<std::uint32_t>>;  // of patterns, ascending

    static Sum SumOf(const std::vector<std::string>& lines);
    std::string Place(std::uint32_t pattern) const;

    const std::vector<store::KnownPattern>& known_;
    std::vector<std::vector<std::string>> sorted_;  // the lines of each known pattern
    Places whole_;                                  // by the sum of all lines
    Places lessOne_;                                // by the sums that leave one line out
};

}  // namespace vicenter::autovch
