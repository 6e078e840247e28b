#pragma once

// Dates as texts: what SQL Server reads from a text and writes by the styles of CONVERT.
// Pure functions; parse_date.cpp reads, format_date.cpp writes.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tsql/types/value.h"

namespace vicenter::tsql::engine {

// SET DATEFORMAT: the order of day, month and year in a date of numbers.
enum class DateFormat : std::uint8_t { kMdy, kDmy, kYmd, kYdm, kMyd, kDym };

// By its three letters, in lower case.
std::optional<DateFormat> DateFormatByName(std::string_view name);

// How a text is read.
struct DateReading {
    int style = 0;  // of CONVERT; one that has an order of its own goes before the format
    DateFormat format = DateFormat::kMdy;
    // date, datetime2 and time: a text that begins with a year of four digits is year, month, day by any
    // format, and there is no year, day, month.
    bool newer = false;
};

// A text as SQL Server reads it: "20260131", "2026-01-31", "01/31/26 8:00" by the order of the format,
// "2026-01-31T08:00:00", "2026年1月31日", "Jan 31 2026 8:00AM", "8:00". The empty text is 1900-01-01. Nothing
// for no date; outOfRange then tells a text in the form of a date ("2026-02-30") from any other.
std::optional<DateTime> ParseDate(std::string_view text, const DateReading& reading = {},
                                  bool* outOfRange = nullptr);

// By a style of CONVERT; nothing for an unknown style.
std::optional<std::string> FormatDate(const DateTime& date, const SqlType& type, int style);

}  // namespace vicenter::tsql::engine
