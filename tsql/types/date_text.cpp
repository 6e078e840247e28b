#include "tsql/types/date_text.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <vector>

#include "text/ascii.h"

namespace vicenter::tsql::engine {

using automation::DateTimeParts;

namespace {

constexpr std::array<const char*, 12> kMonths = {"January",   "February", "March",    "April",
                                                 "May",       "June",     "July",     "August",
                                                 "September", "October",  "November", "December"};
constexpr std::array<const char*, 7> kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                  "Thursday", "Friday", "Saturday"};
constexpr std::int64_t kMillisecondsPerDay = 86400000;
// 0001-01-01 and 9999-12-31, counted from the zero of automation dates.
constexpr std::int64_t kFirstDay = -693593;
constexpr std::int64_t kLastDay = 2958465;

int MonthByName(std::string_view word) {
    if (word.size() < 3) return 0;
    for (std::size_t i = 0; i < kMonths.size(); ++i) {
        const std::string_view name = kMonths[i];
        if (word.size() != 3 && word.size() != name.size()) continue;
        if (text::SameAscii(word, name.substr(0, word.size()))) return static_cast<int>(i) + 1;
    }
    return 0;
}

struct Token {
    enum Kind { kNumber, kWord, kMark } kind = kMark;
    std::string_view text;
    int number = 0;
};

// Numbers, words and single marks; 年, 月 and 日 become words. Nothing when a number is too long.
std::optional<std::vector<Token>> Split(std::string_view text) {
    std::vector<Token> tokens;
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if (std::isspace(byte) != 0) {
            ++at;
            continue;
        }
        std::size_t end = at + 1;
        Token token;
        if (std::isdigit(byte) != 0) {
            while (end < text.size() && std::isdigit(static_cast<unsigned char>(text[end])) != 0)
                ++end;
            if (end - at > 9) return std::nullopt;
            token.kind = Token::kNumber;
            for (std::size_t i = at; i < end; ++i)
                token.number = token.number * 10 + (text[i] - '0');
        } else if (std::isalpha(byte) != 0) {
            while (end < text.size() && std::isalpha(static_cast<unsigned char>(text[end])) != 0)
                ++end;
            token.kind = Token::kWord;
        } else if (byte >= 0x80) {
            while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
                ++end;
            token.kind = Token::kWord;
        }
        token.text = text.substr(at, end - at);
        tokens.push_back(token);
        at = end;
    }
    return tokens;
}

int FullYear(int year, std::size_t digits) {
    // The server's default cut-off: 49 is 2049, 50 is 1950.
    if (digits > 2) return year;
    return year < 50 ? 2000 + year : 1900 + year;
}

class DateReader {
  public:
    DateReader(std::vector<Token> tokens, int style) : tokens_(std::move(tokens)), style_(style) {}

    std::optional<DateTime> Read() {
        parts_ = {1900, 1, 1, 0, 0, 0, 0};
        bool any = false;
        if (IsTimeAhead()) {
            if (!ReadTime()) return std::nullopt;
            any = true;
            if (at_ < tokens_.size() && !ReadDate()) return std::nullopt;
        } else if (at_ < tokens_.size()) {
            if (!ReadDate()) return std::nullopt;
            any = true;
            if (at_ < tokens_.size() && IsWord("T")) ++at_;
            if (at_ < tokens_.size() && !ReadTime()) return std::nullopt;
        }
        if (any && at_ < tokens_.size() && IsWord("Z")) ++at_;
        if (at_ != tokens_.size()) return std::nullopt;
        const std::optional<DateTime> date = DateTime::FromParts(parts_);
        outOfRange_ = !date;
        return date;
    }
    // The text had the form of a date, but there is no such day or hour.
    bool OutOfRange() const { return outOfRange_; }

  private:
    bool IsNumber(std::size_t ahead = 0) const {
        return at_ + ahead < tokens_.size() && tokens_[at_ + ahead].kind == Token::kNumber;
    }
    bool IsMark(char mark, std::size_t ahead = 0) const {
        return at_ + ahead < tokens_.size() && tokens_[at_ + ahead].text == std::string_view(&mark, 1);
    }
    bool IsWord(std::string_view word, std::size_t ahead = 0) const {
        if (at_ + ahead >= tokens_.size()) return false;
        return text::SameAscii(tokens_[at_ + ahead].text, word);
    }
    bool IsTimeAhead() const { return IsNumber() && (IsMark(':', 1) || IsWord("AM", 1) || IsWord("PM", 1)); }

    bool ReadTime() {
        if (!IsTimeAhead()) return false;
        parts_.hour = tokens_[at_++].number;
        if (IsMark(':') && !ReadMinutes()) return false;
        if (IsWord("AM") || IsWord("PM")) {
            if (parts_.hour < 1 || parts_.hour > 12) return false;
            parts_.hour = parts_.hour % 12 + (IsWord("PM") ? 12 : 0);
            ++at_;
        }
        return true;
    }
    bool ReadMinutes() {
        if (!IsNumber(1)) return false;
        parts_.minute = tokens_[at_ + 1].number;
        at_ += 2;
        if (!IsMark(':')) return true;
        if (!IsNumber(1)) return false;
        parts_.second = tokens_[at_ + 1].number;
        at_ += 2;
        if (!(IsMark('.') || IsMark(':')) || !IsNumber(1)) return true;
        const bool decimals = IsMark('.');
        const std::string_view digits = tokens_[at_ + 1].text;
        at_ += 2;
        if (!decimals) {
            // ":5" are five milliseconds, ".5" five tenths.
            parts_.millisecond = tokens_[at_ - 1].number;
            return true;
        }
        if (digits.size() > 7) return false;
        int scaled = 0;
        for (std::size_t i = 0; i < 3; ++i)
            scaled = scaled * 10 + (i < digits.size() ? digits[i] - '0' : 0);
        parts_.millisecond = scaled;
        return true;
    }

    bool ReadDate() {
        if (!IsNumber()) return ReadMonthFirst();
        const Token first = tokens_[at_];
        if (IsWord("年", 1)) return ReadChinese();
        for (const char mark : {'-', '/', '.'}) {
            if (IsMark(mark, 1)) return ReadMarked(mark);
        }
        if (at_ + 1 < tokens_.size() && tokens_[at_ + 1].kind == Token::kWord &&
            MonthByName(tokens_[at_ + 1].text) != 0) {
            return ReadDayThenMonthName();
        }
        ++at_;
        if (first.text.size() == 8)
            return Set(first.number / 10000, first.number / 100 % 100, first.number % 100);
        if (first.text.size() == 6) {
            return Set(FullYear(first.number / 10000, 2), first.number / 100 % 100, first.number % 100);
        }
        return first.text.size() == 4 && Set(first.number, 1, 1);
    }
    bool ReadChinese() {
        const int year = tokens_[at_].number;
        if (!IsNumber(2) || !IsWord("月", 3) || !IsNumber(4) || !IsWord("日", 5)) return false;
        const bool set = Set(year, tokens_[at_ + 2].number, tokens_[at_ + 4].number);
        at_ += 6;
        return set;
    }
    bool ReadMarked(char mark) {
        if (!IsNumber(2) || !IsMark(mark, 3) || !IsNumber(4)) return false;
        const Token a = tokens_[at_];
        const Token b = tokens_[at_ + 2];
        const Token c = tokens_[at_ + 4];
        if (a.text.size() > 4 || b.text.size() > 2 || c.text.size() > 4) return false;
        at_ += 5;
        if (a.text.size() == 4) return Set(a.number, b.number, c.number);
        if (c.text.size() == 4 || style_ != 0) {
            const int year = FullYear(c.number, c.text.size());
            const int base = style_ % 100;
            if (base >= 3 && base <= 5) return Set(year, b.number, a.number);
            return Set(year, a.number, b.number);
        }
        return Set(FullYear(a.number, a.text.size()), b.number, c.number);
    }
    bool ReadMonthFirst() {
        const int month = at_ < tokens_.size() ? MonthByName(tokens_[at_].text) : 0;
        if (month == 0 || !IsNumber(1)) return false;
        const int day = tokens_[at_ + 1].number;
        at_ += 2;
        if (IsMark(',')) ++at_;
        if (!IsNumber()) return false;
        const Token year = tokens_[at_++];
        return Set(FullYear(year.number, year.text.size()), month, day);
    }
    bool ReadDayThenMonthName() {
        const int day = tokens_[at_].number;
        const int month = MonthByName(tokens_[at_ + 1].text);
        at_ += 2;
        if (!IsNumber()) return false;
        const Token year = tokens_[at_++];
        return Set(FullYear(year.number, year.text.size()), month, day);
    }
    bool Set(int year, int month, int day) {
        parts_.year = year;
        parts_.month = month;
        parts_.day = day;
        return true;
    }

    std::vector<Token> tokens_;
    int style_;
    std::size_t at_ = 0;
    DateTimeParts parts_;
    bool outOfRange_ = false;
};

template <class... Args>
std::string Print(const char* format, Args... args) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, args...);
    return buffer;
}

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
    const std::string name = std::string(kMonths[static_cast<std::size_t>(p.month - 1)]).substr(0, 3);
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

std::optional<DateTime> ParseDate(std::string_view text, int style, bool* outOfRange) {
    if (outOfRange != nullptr) *outOfRange = false;
    auto tokens = Split(text);
    if (!tokens) return std::nullopt;
    DateReader reader(std::move(*tokens), style);
    const std::optional<DateTime> date = reader.Read();
    if (outOfRange != nullptr) *outOfRange = reader.OutOfRange();
    return date;
}

std::optional<std::string> FormatDate(const DateTime& date, const SqlType& type, int style) {
    const DateTimeParts p = date.Parts();
    if (style == 0 && type.kind == TypeKind::kDate) style = 23;
    if (style == 0 && type.kind == TypeKind::kTime) style = 114;
    if (style == 0 && type.kind == TypeKind::kDateTime2) style = 121;
    const std::string iso = Print("%04d-%02d-%02d", p.year, p.month, p.day);
    const std::string clock = Print("%02d:%02d:%02d", p.hour, p.minute, p.second);
    const std::string fine = Print("%03d", p.millisecond);
    const std::string name = std::string(kMonths[static_cast<std::size_t>(p.month - 1)]).substr(0, 3);
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
            return Print("%02d ", p.day) + name + Print(" %04d ", p.year) + clock + ":" + fine;
        case 14:
            return clock + ":" + fine;
        case 114:
            return type.kind == TypeKind::kTime ? clock + "." + fine : clock + ":" + fine;
        case 20:
        case 120:
            return iso + " " + clock;
        case 21:
        case 25:
        case 121:
            return iso + " " + clock + "." + fine;
        case 22:
            return Print("%02d/%02d/%02d ", p.month, p.day, p.year % 100) +
                   Print("%2d:%02d:%02d", p.hour % 12 == 0 ? 12 : p.hour % 12, p.minute, p.second) +
                   (p.hour < 12 ? " AM" : " PM");
        case 23:
            return iso;
        case 126:
        case 127:
            return iso + "T" + clock + (p.millisecond != 0 ? "." + fine : "");
        default: {
            std::string day = style > 0 && style < 113 ? DayText(p, style) : std::string();
            if (day.empty()) return std::nullopt;
            return day;
        }
    }
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
    if (part == DatePart::kMonth) return kMonths[static_cast<std::size_t>(date.Parts().month - 1)];
    if (part == DatePart::kWeekday) return kWeekdays[static_cast<std::size_t>(WeekdayOf(DayNumber(date)))];
    return std::to_string(DatePartOf(part, date));
}

std::optional<DateTime> RoundToType(const DateTime& date, const SqlType& type) {
    std::int64_t milliseconds = date.Milliseconds();
    const std::int64_t day = DayNumber(date);
    switch (type.kind) {
        case TypeKind::kDate:
            return DateTime::FromMilliseconds(day * kMillisecondsPerDay);
        case TypeKind::kTime:
            // Kept on 1900-01-01, two days after the zero of automation dates.
            return DateTime::FromMilliseconds(milliseconds - (day - 2) * kMillisecondsPerDay);
        case TypeKind::kSmallDateTime: {
            const std::int64_t within = milliseconds - day * kMillisecondsPerDay;
            // 29.998 seconds and less go down.
            const std::int64_t minutes = (within + 30001) / 60000;
            const DateTime rounded = DateTime::FromMilliseconds(day * kMillisecondsPerDay + minutes * 60000);
            const int year = rounded.Parts().year;
            if (year < 1900 || DayNumber(rounded) > 65382) return std::nullopt;
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
