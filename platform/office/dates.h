#pragma once

// Dates in cells: day numbers since 1900 or 1904, as the workbook says. The 1900 count has a 29 February 1900
// that never was; days before it are one off against the automation serial.

#include "automation/date_time.h"

namespace vicenter::office {

inline constexpr double kDaysFrom1900To1904 = 1462;
inline constexpr double kLeapDayThatNeverWas = 60;
// 9999-12-31 is the last day that a cell shows.
inline constexpr double kLastSerial = 2958466;

inline automation::DateTime DateFromSerial(double serial, bool dates1904) {
    if (dates1904) {
        // Times alone stay on the automation's day 0 here, too.
        if (serial >= 1) serial += kDaysFrom1900To1904;
    } else if (serial >= 0 && serial < kLeapDayThatNeverWas) {
        // Times alone stay on the automation's day 0.
        if (serial >= 1) serial += 1;
    }
    return automation::DateTime::FromSerial(serial);
}

inline double SerialFromDate(const automation::DateTime& date, bool dates1904) {
    const double serial = date.ToSerial();
    if (dates1904) return serial >= 0 && serial < 1 ? serial : serial - kDaysFrom1900To1904;
    return serial >= 2 && serial < kLeapDayThatNeverWas + 1 ? serial - 1 : serial;
}

// Whether the serial is a day that a cell can show as a date.
inline bool IsDateSerial(double serial, bool dates1904) {
    return serial >= 0 && serial + (dates1904 ? kDaysFrom1900To1904 : 0) < kLastSerial;
}

}  // namespace vicenter::office
