#pragma once

// A point in time of the proleptic Gregorian calendar, without time zone, to the millisecond.
// Counted in milliseconds from 1899-12-30 00:00, the day that automation dates count from.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vicenter::automation {

struct DateTimeParts {
    int year = 1899;
    int month = 12;
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

class DateTime {
  public:
    DateTime() = default;
    static DateTime FromMilliseconds(std::int64_t milliseconds);
    // Nothing for parts that are no date of the years 1 to 9999.
    static std::optional<DateTime> FromParts(const DateTimeParts& parts);
    // Automation serial: days since 1899-12-30 with the time of day as the absolute fraction.
    static DateTime FromSerial(double days);
    // "YYYY-MM-DD", "YYYY-MM-DD hh:mm[:ss[.fff]]", also with "/" between the date's parts or "T" before the
    // time, one-digit months and days allowed, blanks around ignored. Nothing for any other text.
    static std::optional<DateTime> Parse(std::string_view text);

    std::int64_t Milliseconds() const { return milliseconds_; }
    double ToSerial() const;
    DateTimeParts Parts() const;
    // "YYYY-MM-DD hh:mm:ss" with ".fff" only when the milliseconds are not 0.
    std::string ToText() const;

    friend bool operator==(const DateTime&, const DateTime&) = default;
    friend auto operator<=>(const DateTime&, const DateTime&) = default;

  private:
    std::int64_t milliseconds_ = 0;
};

}  // namespace vicenter::automation
