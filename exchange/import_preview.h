#pragma once

// What an import would change, before it changes anything: the workbook's lines held against those of the
// template whose place they would take, cell by cell and by the totals of each number; what stands out; what
// keeps the workbook out. A value, with the words in which it is shown. User-interface thread only.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "exchange/exchange_target.h"
#include "exchange/import_destination.h"
#include "exchange/import_outcome.h"
#include "exchange/import_reading.h"
#include "store/line_changes.h"

namespace vicenter::exchange {

// Lines and sums of one template number, before and after.
struct NumberTotals {
    struct Side {
        int lines = 0;
        std::string debit = "0";
        std::string credit = "0";
        friend bool operator==(const Side&, const Side&) = default;
    };
    std::string number;
    Side before;
    Side after;

    bool Changed() const { return !(before == after); }
    // The later sums differ.
    bool Unbalanced() const { return after.debit != after.credit; }
};

struct ImportPreview {
    std::string file;
    ImportDestination destination;
    std::vector<store::LineTexts> before;  // none of a new template
    std::vector<store::LineTexts> after;
    std::vector<store::LineDifference> differences;  // none where there are too many lines to compare
    bool compared = true;
    std::vector<NumberTotals> totals;   // ascending
    std::vector<std::string> warnings;  // what stands out, a sentence each
    std::string refusal;                // what an import would say; empty when it would be written
    std::string reason;
    std::vector<LineFault> faults;

    std::vector<store::LineChange> Changes() const { return store::ChangesOf(differences, before, after); }
    // One sentence: what becomes of which template, how many lines come, go and change.
    std::string Summary() const;
};

// More lines on either side are not compared line by line: they would be more than anybody reads.
inline constexpr std::size_t kMostComparedLines = 100'000;

// Shows the progress while it reads. batch gets what an import would write, as it was read: what has been
// looked at is what is imported; nothing of a workbook that is refused. Throws Cancelled, or
// automation::Error when the account set does not answer.
ImportPreview PreviewImport(ExchangeTarget& window, const std::string& fileName,
                            const ImportDestination& destination, bool tidily = false,
                            std::optional<ImportBatch>* batch = nullptr);

}  // namespace vicenter::exchange
