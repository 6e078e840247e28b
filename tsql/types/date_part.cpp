#include "tsql/types/date_part.h"

#include <array>

#include "text/ascii.h"

namespace vicenter::tsql::engine {

using automation::DateTimeParts;

namespace {

constexpr std::array<const char*, 12> kMonths = {"January",   "February", "March",    "April",
                                                 "May",       "June",     "July",     "August",
                                                 "September", "October",  "November", "December"};
constexpr std::array<const char*, 7> kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                  "Thursday", "Friday", "Saturday"};
// 0001-01-01 and 9999-12-31, counted from the zero of automation dates.
constexpr std::int64_t kFirstDay = -693593;
constexpr std::int64_t kLastDay = 2958465;

// Days since 0001-01-01 would do as well: only differences and weekdays are taken from it.
std::int64_t DayNumber(const DateTime& date) {
    std::int64_t milliseconds = date.Milliseconds();
    std::int64_t day = milliseconds / kMillisecondsPerDay;
    if (milliseconds % kMillisecondsPerDay < 0) --day;
    return day;
}

// 0 is Sunday; 1899-12-30 was a Saturday.
int WeekdayOf(std::int64_t day) {
    return static_cast<int>(((day + 6) % 7 + 7) % 7);
}

int DaysInMonth(int year, int month) {
    static constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && leap ? 29 : kDays[static_cast<std::size_t>(month - 1)];
}

std::optional<DateTime> AddMonths(std::int64_t count, const DateTime& date) {
    DateTimeParts parts = date.Parts();
    const std::int64_t months = std::int64_t{parts.year} * 12 + parts.month - 1 + count;
    if (months < 12 || months >= 120000) return std::nullopt;
    parts.year = static_cast<int>(months / 12);
    parts.month = static_cast<int>(months % 12) + 1;
    const int last = DaysInMonth(parts.year, parts.month);
    if (parts.day > last) parts.day = last;
    return DateTime::FromParts(parts);
}

}  // namespace

std::string_view MonthName(int month) {
    return kMonths[static_cast<std::size_t>(month - 1)];
}

int MonthByName(std::string_view word) {
    if (word.size() < 3) return 0;
    for (std::size_t i = 0; i < kMonths.size(); ++i) {
        const std::string_view name = kMonths[i];
        if (word.size() != 3 && word.size() != name.size()) continue;
        if (text::SameAscii(word, name.substr(0, word.size()))) return static_cast<int>(i) + 1;
    }
    return 0;
}

std::optional<DatePart> DatePartByName(std::string_view lowerName) {
    struct Named {
        std::string_view name;
        DatePart part;
    };
    static constexpr Named kParts[] = {
        {"year", DatePart::kYear},
        {"yy", DatePart::kYear},
        {"yyyy", DatePart::kYear},
        {"quarter", DatePart::kQuarter},
        {"qq", DatePart::kQuarter},
        {"q", DatePart::kQuarter},
        {"month", DatePart::kMonth},
        {"mm", DatePart::kMonth},
        {"m", DatePart::kMonth},
        {"dayofyear", DatePart::kDayOfYear},
        {"dy", DatePart::kDayOfYear},
        {"y", DatePart::kDayOfYear},
        {"day", DatePart::kDay},
        {"dd", DatePart::kDay},
        {"d", DatePart::kDay},
        {"week", DatePart::kWeek},
        {"wk", DatePart::kWeek},
        {"ww", DatePart::kWeek},
        {"iso_week", DatePart::kIsoWeek},
        {"isowk", DatePart::kIsoWeek},
        {"isoww", DatePart::kIsoWeek},
        {"weekday", DatePart::kWeekday},
        {"dw", DatePart::kWeekday},
        {"w", DatePart::kWeekday},
        {"hour", DatePart::kHour},
        {"hh", DatePart::kHour},
        {"minute", DatePart::kMinute},
        {"mi", DatePart::kMinute},
        {"n", DatePart::kMinute},
        {"second", DatePart::kSecond},
        {"ss", DatePart::kSecond},
        {"s", DatePart::kSecond},
        {"millisecond", DatePart::kMillisecond},
        {"ms", DatePart::kMillisecond},
    };
    for (const Named& entry : kParts) {
        if (entry.name == lowerName) return entry.part;
    }
    return std::nullopt;
}

std::optional<DateTime> AddToDate(DatePart part, std::int64_t count, const DateTime& date) {
    std::int64_t unit = 0;
    switch (part) {
        case DatePart::kYear:
            return AddMonths(count * 12, date);
        case DatePart::kQuarter:
            return AddMonths(count * 3, date);
        case DatePart::kMonth:
            return AddMonths(count, date);
        case DatePart::kWeek:
        case DatePart::kIsoWeek:
            unit = 7 * kMillisecondsPerDay;
            break;
        case DatePart::kDay:
        case DatePart::kDayOfYear:
        case DatePart::kWeekday:
            unit = kMillisecondsPerDay;
            break;
        case DatePart::kHour:
            unit = 3600000;
            break;
        case DatePart::kMinute:
            unit = 60000;
            break;
        case DatePart::kSecond:
            unit = 1000;
            break;
        case DatePart::kMillisecond:
            unit = 1;
            break;
    }
    // int arguments times a week stay far below 2^63.
    const DateTime moved = DateTime::FromMilliseconds(date.Milliseconds() + count * unit);
    const std::int64_t day = DayNumber(moved);
    if (day < kFirstDay || day > kLastDay) return std::nullopt;
    return moved;
}

std::int64_t DateDifference(DatePart part, const DateTime& from, const DateTime& to) {
    const DateTimeParts a = from.Parts();
    const DateTimeParts b = to.Parts();
    const auto crossed = [&](std::int64_t unit) {
        const auto count = [unit](std::int64_t milliseconds) {
            const std::int64_t whole = milliseconds / unit;
            return milliseconds % unit < 0 ? whole - 1 : whole;
        };
        return count(to.Milliseconds()) - count(from.Milliseconds());
    };
    switch (part) {
        case DatePart::kYear:
            return b.year - a.year;
        case DatePart::kQuarter:
            return (b.year - a.year) * 4 + (b.month - 1) / 3 - (a.month - 1) / 3;
        case DatePart::kMonth:
            return (b.year - a.year) * 12 + b.month - a.month;
        case DatePart::kWeek:
        case DatePart::kIsoWeek: {
            // Weeks begin on Sunday here whatever DATEFIRST says.
            const std::int64_t first = DayNumber(from);
            const std::int64_t last = DayNumber(to);
            return ((last - WeekdayOf(last)) - (first - WeekdayOf(first))) / 7;
        }
        case DatePart::kDay:
        case DatePart::kDayOfYear:
        case DatePart::kWeekday:
            return DayNumber(to) - DayNumber(from);
        case DatePart::kHour:
            return crossed(3600000);
        case DatePart::kMinute:
            return crossed(60000);
        case DatePart::kSecond:
            return crossed(1000);
        case DatePart::kMillisecond:
            return to.Milliseconds() - from.Milliseconds();
    }
    return 0;
}

int DatePartOf(DatePart part, const DateTime& date) {
    const DateTimeParts p = date.Parts();
    const std::int64_t day = DayNumber(date);
    const auto firstOfYear = [](int year) {
        return DayNumber(*DateTime::FromParts({year, 1, 1, 0, 0, 0, 0}));
    };
    switch (part) {
        case DatePart::kYear:
            return p.year;
        case DatePart::kQuarter:
            return (p.month - 1) / 3 + 1;
        case DatePart::kMonth:
            return p.month;
        case DatePart::kDay:
            return p.day;
        case DatePart::kDayOfYear:
            return static_cast<int>(day - firstOfYear(p.year)) + 1;
        case DatePart::kWeek: {
            const std::int64_t first = firstOfYear(p.year);
            return static_cast<int>((day - first + WeekdayOf(first)) / 7) + 1;
        }
        case DatePart::kIsoWeek: {
            // The week belongs to the year of its Thursday.
            const std::int64_t thursday = day - (WeekdayOf(day) + 6) % 7 + 3;
            const int year = DateTime::FromMilliseconds(thursday * kMillisecondsPerDay).Parts().year;
            return static_cast<int>((thursday - firstOfYear(year)) / 7) + 1;
        }
        case DatePart::kWeekday:
            return WeekdayOf(day) + 1;
        case DatePart::kHour:
            return p.hour;
        case DatePart::kMinute:
            return p.minute;
        case DatePart::kSecond:
            return p.second;
        case DatePart::kMillisecond:
            return p.millisecond;
    }
    return 0;
}

std::string DateName(DatePart part, const DateTime& date) {
    if (part == DatePart::kMonth) return std::string(MonthName(date.Parts().month));
    if (part == DatePart::kWeekday) return kWeekdays[static_cast<std::size_t>(WeekdayOf(DayNumber(date)))];
    return std::to_string(DatePartOf(part, date));
}

// The last day of smalldatetime, counted from 1900-01-01: 2079-06-06.
constexpr std::int64_t kLastSmallDay = 65535;

SqlType WithDateDigits(TypeKind kind, int digits) {
    SqlType type = SqlType::Of(kind);
    if (digits == kMostDateDigits) return type;
    // As the server counts the characters of it.
    const int withoutDigits = kind == TypeKind::kTime ? 8 : 19;
    type.precision = withoutDigits + (digits > 0 ? digits + 1 : 0);
    type.scale = digits;
    return type;
}

int DateDigits(const SqlType& type) {
    if (type.kind != TypeKind::kTime && type.kind != TypeKind::kDateTime2) return 3;
    return type.precision == 0 ? kMostDateDigits : type.scale;
}

namespace {

// To tens, hundreds or thousands of milliseconds.
std::int64_t RoundedTo(int digits, std::int64_t milliseconds) {
    const std::int64_t unit = digits >= 3 ? 1 : digits == 2 ? 10 : digits == 1 ? 100 : 1000;
    return (milliseconds + unit / 2) / unit * unit;
}

}  // namespace

std::optional<DateTime> RoundToType(const DateTime& date, const SqlType& type) {
    std::int64_t milliseconds = date.Milliseconds();
    const std::int64_t day = DayNumber(date);
    switch (type.kind) {
        case TypeKind::kDate:
            return DateTime::FromMilliseconds(day * kMillisecondsPerDay);
        case TypeKind::kTime:
            // Kept on 1900-01-01.
            milliseconds = RoundedTo(DateDigits(type), milliseconds - day * kMillisecondsPerDay);
            return DateTime::FromMilliseconds(kZeroDay * kMillisecondsPerDay +
                                              milliseconds % kMillisecondsPerDay);
        case TypeKind::kDateTime2: {
            const std::int64_t within = RoundedTo(DateDigits(type), milliseconds - day * kMillisecondsPerDay);
            const DateTime rounded = DateTime::FromMilliseconds(day * kMillisecondsPerDay + within);
            if (DayNumber(rounded) > kLastDay) return std::nullopt;
            return rounded;
        }
        case TypeKind::kSmallDateTime: {
            const std::int64_t within = milliseconds - day * kMillisecondsPerDay;
            // 29.998 seconds and less go down.
            const std::int64_t minutes = (within + 30001) / 60000;
            const DateTime rounded = DateTime::FromMilliseconds(day * kMillisecondsPerDay + minutes * 60000);
            const int year = rounded.Parts().year;
            if (year < 1900 || DayNumber(rounded) > kZeroDay + kLastSmallDay) return std::nullopt;
            return rounded;
        }
        case TypeKind::kDateTime: {
            static constexpr std::array<int, 10> kRounded = {0, 0, 3, 3, 3, 7, 7, 7, 7, 10};
            if (date.Parts().year < 1753) return std::nullopt;
            const std::int64_t within = milliseconds - day * kMillisecondsPerDay;
            const std::int64_t last = within % 10;
            const DateTime rounded =
                DateTime::FromMilliseconds(milliseconds - last + kRounded[static_cast<std::size_t>(last)]);
            // The last of all milliseconds goes up into a year that there is not.
            if (DayNumber(rounded) > kLastDay) return std::nullopt;
            return rounded;
        }
        default:
            return date;
    }
}

}  // namespace vicenter::tsql::engine
