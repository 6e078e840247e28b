#include <cctype>
#include <vector>

#include "text/ascii.h"
#include "text/utf8.h"
#include "tsql/types/date_part.h"
#include "tsql/types/date_text.h"

namespace vicenter::tsql::engine {

using automation::DateTimeParts;

namespace {

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
            end = at + text::ReadUtf8(text, at).length;
            token.kind = Token::kWord;
        }
        token.text = text.substr(at, end - at);
        tokens.push_back(token);
        at = end;
    }
    return tokens;
}

// The server's default cut-off: 49 is 2049, 50 is 1950. A year has one, two or four digits.
std::optional<int> FullYear(const Token& token) {
    if (token.text.size() == 4) return token.number;
    if (token.text.size() > 2) return std::nullopt;
    return token.number < 50 ? 2000 + token.number : 1900 + token.number;
}

struct NamedFormat {
    std::string_view name;
    DateFormat format;
};
constexpr NamedFormat kFormats[] = {{"mdy", DateFormat::kMdy}, {"dmy", DateFormat::kDmy},
                                    {"ymd", DateFormat::kYmd}, {"ydm", DateFormat::kYdm},
                                    {"myd", DateFormat::kMyd}, {"dym", DateFormat::kDym}};

std::string_view LettersOf(DateFormat format) {
    for (const NamedFormat& named : kFormats) {
        if (named.format == format) return named.name;
    }
    return "mdy";
}

// The order in which day, month and year stand: that of the style, or of the format where it has none.
DateFormat OrderOf(const DateReading& reading) {
    switch (reading.style) {
        case 1:
        case 101:
        case 7:
        case 107:
        case 10:
        case 110:
            return DateFormat::kMdy;
        case 3:
        case 103:
        case 4:
        case 104:
        case 5:
        case 105:
        case 6:
        case 106:
            return DateFormat::kDmy;
        case 2:
        case 102:
        case 11:
        case 111:
        case 12:
        case 112:
        case 20:
        case 120:
        case 21:
        case 121:
        case 23:
        case 25:
        case 126:
        case 127:
            return DateFormat::kYmd;
        default:
            return reading.format;
    }
}

class DateReader {
  public:
    DateReader(std::vector<Token> tokens, const DateReading& reading)
        : tokens_(std::move(tokens)), order_(OrderOf(reading)), newer_(reading.newer) {}

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
        if (IsMonth(0)) return ReadNamedMonth();
        if (!IsNumber()) return false;
        const Token first = tokens_[at_];
        if (IsWord("年", 1)) return ReadChinese();
        // 15 Jan 2026, 15-Jan-2026, 2026 15 Jan.
        if (IsMonth(1) || (IsSeparator(1) && IsMonth(2)) || (IsNumber(1) && IsMonth(2)))
            return ReadNamedMonth();
        for (const char mark : {'-', '/', '.'}) {
            if (IsMark(mark, 1)) return ReadMarked(mark);
        }
        ++at_;
        if (first.text.size() == 8)
            return Set(first.number / 10000, first.number / 100 % 100, first.number % 100);
        if (first.text.size() == 6) {
            const int year = first.number / 10000;
            return Set(year < 50 ? 2000 + year : 1900 + year, first.number / 100 % 100, first.number % 100);
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
    // Three numbers between marks. A year of four digits is one wherever it stands, and leaves the others in
    // the order of the format.
    bool ReadMarked(char mark) {
        if (!IsNumber(2) || !IsMark(mark, 3) || !IsNumber(4)) return false;
        const Token parts[] = {tokens_[at_], tokens_[at_ + 2], tokens_[at_ + 4]};
        at_ += 5;
        const bool startsWithYear = parts[0].text.size() == 4;
        // ISO 8601 has one order.
        const bool isFixed =
            startsWithYear && (newer_ || (mark == '-' && at_ < tokens_.size() && IsWord("T")));
        std::string order(LettersOf(isFixed ? DateFormat::kYmd : order_));
        if (newer_ && order == "ydm") return false;
        for (std::size_t i = 0; i < 3; ++i) {
            if (parts[i].text.size() != 4) continue;
            std::erase(order, 'y');
            order.insert(i, 1, 'y');
            break;
        }
        const Token& year = parts[order.find('y')];
        const Token& month = parts[order.find('m')];
        const Token& day = parts[order.find('d')];
        const std::optional<int> fullYear = FullYear(year);
        if (!fullYear || month.text.size() > 2 || day.text.size() > 2) return false;
        return Set(*fullYear, month.number, day.number);
    }
    // A month by its name, and before and behind it a day and a year in either order. Of a lone year it is
    // the first day.
    bool ReadNamedMonth() {
        int month = 0;
        std::vector<Token> numbers;
        for (; at_ < tokens_.size() && !IsTimeAhead(); ++at_) {
            if (month == 0 && IsMonth(0)) {
                month = MonthByName(tokens_[at_].text);
            } else if (IsNumber() && numbers.size() < 2) {
                numbers.push_back(tokens_[at_]);
            } else if (!IsSeparator(0)) {
                break;
            }
        }
        if (month == 0 || numbers.empty()) return false;
        const bool yearFirst = numbers.front().text.size() == 4;
        if (numbers.size() == 1) return yearFirst && Set(numbers.front().number, month, 1);
        const Token& day = numbers[yearFirst ? 1 : 0];
        const std::optional<int> year = FullYear(numbers[yearFirst ? 0 : 1]);
        return year && day.text.size() <= 2 && Set(*year, month, day.number);
    }
    bool IsMonth(std::size_t ahead) const {
        return at_ + ahead < tokens_.size() && tokens_[at_ + ahead].kind == Token::kWord &&
               MonthByName(tokens_[at_ + ahead].text) != 0;
    }
    bool IsSeparator(std::size_t ahead) const {
        return IsMark('-', ahead) || IsMark('/', ahead) || IsMark('.', ahead) || IsMark(',', ahead);
    }
    bool Set(int year, int month, int day) {
        parts_.year = year;
        parts_.month = month;
        parts_.day = day;
        return true;
    }

    std::vector<Token> tokens_;
    DateFormat order_;
    bool newer_;
    std::size_t at_ = 0;
    DateTimeParts parts_;
    bool outOfRange_ = false;
};

}  // namespace

std::optional<DateFormat> DateFormatByName(std::string_view name) {
    for (const NamedFormat& named : kFormats) {
        if (named.name == name) return named.format;
    }
    return std::nullopt;
}

std::optional<DateTime> ParseDate(std::string_view text, const DateReading& reading, bool* outOfRange) {
    if (outOfRange != nullptr) *outOfRange = false;
    auto tokens = Split(text);
    if (!tokens) return std::nullopt;
    DateReader reader(std::move(*tokens), reading);
    const std::optional<DateTime> date = reader.Read();
    if (outOfRange != nullptr) *outOfRange = reader.OutOfRange();
    return date;
}

}  // namespace vicenter::tsql::engine
