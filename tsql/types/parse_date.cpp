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

}  // namespace vicenter::tsql::engine
