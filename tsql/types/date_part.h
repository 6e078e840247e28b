#pragma once

// The parts of a date, by the names that DATEADD, DATEDIFF, DATENAME and DATEPART know, and reckoning with
// them; what of a date each type keeps. Pure functions.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tsql/types/value.h"

namespace vicenter::tsql::engine {

inline constexpr std::int64_t kMillisecondsPerDay = 86400000;
// SQL Server counts days from 1900-01-01, automation dates begin two days earlier.
inline constexpr std::int64_t kZeroDay = 2;

enum class DatePart {
    kYear,
    kQuarter,
    kMonth,
    kDayOfYear,
    kDay,
    kWeek,
    kIsoWeek,
    kWeekday,
    kHour,
    kMinute,
    kSecond,
    kMillisecond,
};
std::optional<DatePart> DatePartByName(std::string_view lowerName);

// Nothing when the result leaves the years 1 to 9999.
std::optional<DateTime> AddToDate(DatePart part, std::int64_t count, const DateTime& date);
// The boundaries of that part crossed from one date to the other.
std::int64_t DateDifference(DatePart part, const DateTime& from, const DateTime& to);
int DatePartOf(DatePart part, const DateTime& date);
// "January", "Saturday", else the number.
std::string DateName(DatePart part, const DateTime& date);

// datetime2 and time with their digits behind the second, of which the first three are kept: 7 where none are
// said, which is how types of older account sets read. Of other types what they show.
inline constexpr int kMostDateDigits = 7;
SqlType WithDateDigits(TypeKind kind, int digits);
int DateDigits(const SqlType& type);

// "January" for 1.
std::string_view MonthName(int month);
// From the whole name or its first three letters; 0 for any other word.
int MonthByName(std::string_view word);

// Rounded to what the type keeps: datetime to 1/300 s, smalldatetime to the minute, date to the day. Nothing
// when the date is outside of the type's range.
std::optional<DateTime> RoundToType(const DateTime& date, const SqlType& type);

}  // namespace vicenter::tsql::engine
