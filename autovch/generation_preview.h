#pragma once

// What a generation would write, before it writes: the selected vouchers by their patterns, how often each
// occurred, which of them the user has already, and which voucher numbers would hold vouchers of several
// groups. Vouchers are of one pattern when they hold the same sides of the same accounts in the same order.
// User-interface thread.

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "autovch/voucher_filter.h"

namespace vicenter::autovch {

// Template numbers that a generation leaves out.
using LeftOut = std::set<std::string>;

struct VoucherPattern {
    std::vector<std::string> numbers;  // the template numbers that it would become
    std::string explanation;           // of the first of them
    std::vector<std::string> lines;    // sides and account codes
    std::string words;                 // the same with the accounts' names
    std::string alike;                 // what the user has already of it; empty: nothing like it

    std::size_t Occurrences() const { return numbers.size(); }
};

struct GenerationPreview {
    std::string problem;                   // why there is nothing to show
    std::vector<VoucherPattern> patterns;  // the most frequent first
};
GenerationPreview PreviewGeneration(const VoucherFilter& filter);

// Voucher numbers under which a generation of all groups merges vouchers of different ones, as it is meant
// to.
struct MergedNumbers {
    std::vector<std::string> numbers;
    std::vector<std::string> groups;  // those of all selected vouchers, the one of the most vouchers first

    // What users are told; empty when nothing is merged.
    std::string Warning() const;
};
// None for a filter of one group or with a problem.
MergedNumbers FindMergedNumbers(const VoucherFilter& filter);

// Lines that a generation leaves out, because their account or currency is no longer in the ledger; none for
// a filter with a problem. What users are told of them; empty when there are none.
store::MissingLines FindMissingLines(const VoucherFilter& filter);
std::string MissingLinesWarning(const store::MissingLines& missing);

// "1、2、3 等 7 个" where there are more than a line holds.
std::string ListOfNumbers(const std::vector<std::string>& numbers);

}  // namespace vicenter::autovch
