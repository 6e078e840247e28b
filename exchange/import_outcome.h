#pragma once

// What became of one workbook's import, for whoever lists faults, counts files or answers a program: the
// message boxes hold the fixed texts, this holds the reasons behind them. A value.

#include <cstdint>
#include <string>
#include <vector>

#include "store/line_fault.h"

namespace vicenter::exchange {

using store::LineFault;

struct ImportOutcome {
    bool written = false;
    std::string file = {};  // empty when none was chosen
    std::string templateName = {};
    std::int32_t templateId = -1;
    std::int32_t lines = 0;
    std::string told = {};  // what the user was told of the success
    // Nothing was written: what the user was told, in the fixed words; empty when he has stopped it himself.
    std::string refusal = {};
    // Why, where the fixed words do not say it.
    std::string reason = {};
    std::vector<LineFault> faults = {};

    explicit operator bool() const { return written; }
};

}  // namespace vicenter::exchange
