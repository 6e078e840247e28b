#include "automation/date_time.h"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "text/blanks.h"

namespace vicenter::automation {

namespace {

constexpr std::int64_t kMillisecondsPerDay = 86'400'000;
constexpr std::int64_t kEpochFromUnix = -25569;  // 1899-12-30 in days from 1970-01-01

// Days from 1970-01-01 of a proleptic Gregorian date, counted in eras of 400 years that begin on 1 March.
std::int64_t DaysFromCivil(int year, int month, int day) {
    const int y = month <= 2 ? year - 1 : year;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const std::int64_t yearOfEra = y - era * 400;
    const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

void CivilFromDays(std::int64_t days, DateTimeParts& parts) {
    days += 719468;
    const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const std::int64_t dayOfEra = days - era * 146097;
    const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t shifted = (5 * dayOfYear + 2) / 153;
    parts.day = static_cast<int>(dayOfYear - (153 * shifted + 2) / 5 + 1);
    parts.month = static_cast<int>(shifted < 10 ? shifted + 3 : shifted - 9);
    parts.year = static_cast<int>(yearOfEra + era * 400 + (parts.month <= 2 ? 1 : 0));
}

int DaysInMonth(int year, int month) {
    constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && leap ? 29 : kDays[month - 1];
}

// Reads one run of 1 to maxDigits digits at the head of text and takes it off.
std::optional<int> TakeNumber(std::string_view& text, std::size_t maxDigits) {
    std::size_t count = 0;
    while (count < text.size() && count < maxDigits && text[count] >= '0' && text[count] <= '9')
        ++count;
    if (count == 0) return std::nullopt;
    int value = 0;
    std::from_chars(text.data(), text.data() + count, value);
    text.remove_prefix(count);
    return value;
}

bool Take(std::string_view& text, char c) {
    if (text.empty() || text.front() != c) return false;
    text.remove_prefix(1);
    return true;
}

}  // namespace

DateTime DateTime::FromMilliseconds(std::int64_t milliseconds) {
    DateTime result;
    result.milliseconds_ = milliseconds;
    return result;
}

std::optional<DateTime> DateTime::FromParts(const DateTimeParts& p) {
    if (p.year < 1 || p.year > 9999 || p.month < 1 || p.month > 12) return std::nullopt;
    if (p.day < 1 || p.day > DaysInMonth(p.year, p.month)) return std::nullopt;
    if (p.hour < 0 || p.hour > 23 || p.minute < 0 || p.minute > 59 || p.second < 0 || p.second > 59) {
        return std::nullopt;
    }
    if (p.millisecond < 0 || p.millisecond > 999) return std::nullopt;
    const std::int64_t days = DaysFromCivil(p.year, p.month, p.day) - kEpochFromUnix;
    const std::int64_t seconds = (p.hour * 60 + p.minute) * 60 + p.second;
    return FromMilliseconds(days * kMillisecondsPerDay + seconds * 1000 + p.millisecond);
}

DateTime DateTime::FromSerial(double days) {
    const double whole = std::trunc(days);
    const double timeOfDay = std::fabs(days - whole);
    return FromMilliseconds(static_cast<std::int64_t>(whole) * kMillisecondsPerDay +
                            static_cast<std::int64_t>(std::llround(timeOfDay * kMillisecondsPerDay)));
}

double DateTime::ToSerial() const {
    std::int64_t days = milliseconds_ / kMillisecondsPerDay;
    std::int64_t rest = milliseconds_ % kMillisecondsPerDay;
    if (rest < 0) {
        rest += kMillisecondsPerDay;
        --days;
    }
    const double fraction = static_cast<double>(rest) / kMillisecondsPerDay;
    // Before the epoch the fraction still counts forward within its day: -1.25 is 06:00 of the day before.
    return days < 0 ? static_cast<double>(days) - fraction : static_cast<double>(days) + fraction;
}

DateTimeParts DateTime::Parts() const {
    std::int64_t days = milliseconds_ / kMillisecondsPerDay;
    std::int64_t rest = milliseconds_ % kMillisecondsPerDay;
    if (rest < 0) {
        rest += kMillisecondsPerDay;
        --days;
    }
    DateTimeParts parts;
    CivilFromDays(days + kEpochFromUnix, parts);
    parts.millisecond = static_cast<int>(rest % 1000);
    rest /= 1000;
    parts.second = static_cast<int>(rest % 60);
    rest /= 60;
    parts.minute = static_cast<int>(rest % 60);
    parts.hour = static_cast<int>(rest / 60);
    return parts;
}

std::optional<DateTime> DateTime::Parse(std::string_view text) {
    text = text::Trimmed(text, text::kSpace);
    DateTimeParts parts;
    const auto year = TakeNumber(text, 4);
    if (!year || text.empty() || (text.front() != '-' && text.front() != '/')) return std::nullopt;
    const char separator = text.front();
    text.remove_prefix(1);
    const auto month = TakeNumber(text, 2);
    if (!month || !Take(text, separator)) return std::nullopt;
    const auto day = TakeNumber(text, 2);
    if (!day) return std::nullopt;
    parts.year = *year;
    parts.month = *month;
    parts.day = *day;
    if (!text.empty()) {
        if (!Take(text, 'T') && !Take(text, ' ')) return std::nullopt;
        while (Take(text, ' ')) {
        }
        const auto hour = TakeNumber(text, 2);
        if (!hour || !Take(text, ':')) return std::nullopt;
        const auto minute = TakeNumber(text, 2);
        if (!minute) return std::nullopt;
        parts.hour = *hour;
        parts.minute = *minute;
        if (Take(text, ':')) {
            const auto second = TakeNumber(text, 2);
            if (!second) return std::nullopt;
            parts.second = *second;
            if (Take(text, '.')) {
                const std::size_t before = text.size();
                const auto fraction = TakeNumber(text, 3);
                if (!fraction) return std::nullopt;
                int value = *fraction;
                for (std::size_t digits = before - text.size(); digits < 3; ++digits)
                    value *= 10;
                parts.millisecond = value;
            }
        }
    }
    if (!text.empty()) return std::nullopt;
    return FromParts(parts);
}

std::string DateTime::ToText() const {
    const DateTimeParts p = Parts();
    char buffer[96];
    if (p.millisecond != 0) {
        std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02d:%02d:%02d.%03d", p.year, p.month, p.day,
                      p.hour, p.minute, p.second, p.millisecond);
    } else {
        std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02d:%02d:%02d", p.year, p.month, p.day, p.hour,
                      p.minute, p.second);
    }
    return buffer;
}

}  // namespace vicenter::automation
