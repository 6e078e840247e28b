#pragma once

// What became of one workbook's import, for whoever lists faults, counts files or answers a program: the
// message boxes hold the fixed texts, this holds the reasons behind them. A value.

#include <cstdint>
#include <string>
#include <vector>

namespace vicenter::exchange {

// One thing that is wrong with a workbook.
struct ImportFault {
    std::int32_t row = 0;     // of the sheet, from 1; 0: the file as a whole
    std::int32_t column = 0;  // of the sheet, from 1; 0: the whole row or file
    std::string header = {};  // of the column
    std::string value = {};   // as one would type it
    std::string reason = {};
};

struct ImportOutcome {
    bool written = false;
    std::string templateName = {};
    std::int32_t templateId = -1;
    std::int32_t lines = 0;
    // Nothing was written: what the user was told, in the fixed words; empty when he has stopped it himself.
    std::string refusal = {};
    // Why, where the fixed words do not say it.
    std::string reason = {};
    std::vector<ImportFault> faults = {};

    explicit operator bool() const { return written; }
};

}  // namespace vicenter::exchange
