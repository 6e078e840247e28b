#pragma once

// A date as one would type it: "2024-01-02", "2024-01-02 03:04:05"; a time alone, which is a date of day 0,
// as "03:04:05". Pure function.

#include <string>
#include <string_view>

#include "automation/date_time.h"

namespace vicenter::automation {

inline std::string DateAsTyped(const DateTime& date) {
    std::string text = date.ToText();
    constexpr std::string_view kMidnight = " 00:00:00";
    constexpr std::string_view kDayZero = "1899-12-30 ";
    if (text.starts_with(kDayZero)) {
        text.erase(0, kDayZero.size());
    } else if (text.ends_with(kMidnight)) {
        text.resize(text.size() - kMidnight.size());
    }
    return text;
}

}  // namespace vicenter::automation
