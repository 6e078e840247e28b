#pragma once

// Dates as texts: what SQL Server reads from a text and writes by the styles of CONVERT.
// Pure functions; parse_date.cpp reads, format_date.cpp writes.

#include <optional>
#include <string>
#include <string_view>

#include "tsql/types/value.h"

namespace vicenter::tsql::engine {

// A text as SQL Server reads it with DATEFORMAT ymd: "20260131", "2026-01-31", "2026/1/31 8:00",
// "2026-01-31T08:00:00", "2026年1月31日", "01/31/2026", "Jan 31 2026 8:00AM", "8:00". The empty text is
// 1900-01-01. Nothing for no date; outOfRange then tells a text in the form of a date ("2026-02-30") from any
// other. style is that of CONVERT: 3, 4, 5, 103, 104, 105 read the day first.
std::optional<DateTime> ParseDate(std::string_view text, int style = 0, bool* outOfRange = nullptr);

// By a style of CONVERT; nothing for an unknown style.
std::optional<std::string> FormatDate(const DateTime& date, const SqlType& type, int style);

}  // namespace vicenter::tsql::engine
