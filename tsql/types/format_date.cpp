#include <cstdio>

#include "tsql/types/date_part.h"
#include "tsql/types/date_text.h"

namespace vicenter::tsql::engine {

using automation::DateTimeParts;

namespace {

template <class... Args>
std::string Print(const char* format, Args... args) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, args...);
    return buffer;
}

std::string Clock12(const DateTimeParts& parts, bool seconds) {
    const int hour = parts.hour % 12 == 0 ? 12 : parts.hour % 12;
    const char* half = parts.hour < 12 ? "AM" : "PM";
    if (!seconds) return Print("%2d:%02d%s", hour, parts.minute, half);
    return Print("%2d:%02d:%02d:%03d%s", hour, parts.minute, parts.second, parts.millisecond, half);
}

std::string DayText(const DateTimeParts& p, int style) {
    const int yearShown = style < 100 ? p.year % 100 : p.year;
    const char* year = style < 100 ? "%02d" : "%04d";
    const std::string y = Print(year, yearShown);
    const std::string m = Print("%02d", p.month);
    const std::string d = Print("%02d", p.day);
    const std::string name = std::string(MonthName(p.month).substr(0, 3));
    switch (style % 100) {
        case 1:
            return m + "/" + d + "/" + y;
        case 2:
            return y + "." + m + "." + d;
        case 3:
            return d + "/" + m + "/" + y;
        case 4:
            return d + "." + m + "." + y;
        case 5:
            return d + "-" + m + "-" + y;
        case 6:
            return d + " " + name + " " + y;
        case 7:
            return name + " " + d + ", " + y;
        case 10:
            return m + "-" + d + "-" + y;
        case 11:
            return y + "/" + m + "/" + d;
        case 12:
            return y + m + d;
        default:
            return {};
    }
}

}  // namespace

std::optional<std::string> FormatDate(const DateTime& date, const SqlType& type, int style) {
    const DateTimeParts p = date.Parts();
    if (style == 0 && type.kind == TypeKind::kDate) style = 23;
    if (style == 0 && type.kind == TypeKind::kTime) style = 114;
    if (style == 0 && type.kind == TypeKind::kDateTime2) style = 121;
    const std::string iso = Print("%04d-%02d-%02d", p.year, p.month, p.day);
    const std::string clock = Print("%02d:%02d:%02d", p.hour, p.minute, p.second);
    // Of the newer types as many digits as they have, behind a point.
    const bool newer = type.kind == TypeKind::kDateTime2 || type.kind == TypeKind::kTime;
    const std::string digits =
        Print("%03d0000", p.millisecond).substr(0, static_cast<std::size_t>(DateDigits(type)));
    const std::string fraction = digits.empty() ? std::string() : "." + digits;
    const std::string fine = newer ? fraction : ":" + digits;
    const std::string name = std::string(MonthName(p.month).substr(0, 3));
    switch (style) {
        case 0:
        case 100:
            return name + Print(" %2d %04d ", p.day, p.year) + Clock12(p, false);
        case 9:
        case 109:
            return name + Print(" %2d %04d ", p.day, p.year) + Clock12(p, true);
        case 8:
        case 24:
        case 108:
            return clock;
        case 13:
        case 113:
            return Print("%02d ", p.day) + name + Print(" %04d ", p.year) + clock + fine;
        case 14:
        case 114:
            return clock + fine;
        case 20:
        case 120:
            return iso + " " + clock;
        case 21:
        case 25:
        case 121:
            return iso + " " + clock + fraction;
        case 22:
            return Print("%02d/%02d/%02d ", p.month, p.day, p.year % 100) +
                   Print("%2d:%02d:%02d", p.hour % 12 == 0 ? 12 : p.hour % 12, p.minute, p.second) +
                   (p.hour < 12 ? " AM" : " PM");
        case 23:
            return iso;
        case 126:
        case 127:
            return iso + "T" + clock + (p.millisecond != 0 ? fraction : "");
        default: {
            std::string day = style > 0 && style < 113 ? DayText(p, style) : std::string();
            if (day.empty()) return std::nullopt;
            return day;
        }
    }
}

}  // namespace vicenter::tsql::engine
