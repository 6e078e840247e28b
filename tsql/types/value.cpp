#include "tsql/types/value.h"

#include "automation/error.h"

namespace vicenter::tsql::engine {

namespace {

void PutDigits(char* at, int count, int number) {
    for (int i = count - 1; i >= 0; --i) {
        at[i] = static_cast<char>('0' + number % 10);
        number /= 10;
    }
}

int Digits(std::string_view text, std::size_t at, std::size_t count) {
    int number = 0;
    for (std::size_t i = at; i < at + count && i < text.size(); ++i)
        number = number * 10 + (text[i] - '0');
    return number;
}

}  // namespace

std::string StoredDate(const DateTime& date, const SqlType& type) {
    const automation::DateTimeParts parts = date.Parts();
    char buffer[] = "0000-00-00 00:00:00.000";
    PutDigits(buffer, 4, parts.year);
    PutDigits(buffer + 5, 2, parts.month);
    PutDigits(buffer + 8, 2, parts.day);
    PutDigits(buffer + 11, 2, parts.hour);
    PutDigits(buffer + 14, 2, parts.minute);
    PutDigits(buffer + 17, 2, parts.second);
    PutDigits(buffer + 20, 3, parts.millisecond);
    if (type.kind == TypeKind::kDate) return std::string(buffer, 10);
    if (type.kind == TypeKind::kTime) return std::string(buffer + 11, 12);
    return std::string(buffer, 23);
}

DateTime ReadStoredDate(std::string_view text, const SqlType& type) {
    automation::DateTimeParts parts;
    if (type.kind == TypeKind::kTime) {
        // A time of day belongs to 1900-01-01, as when SQL Server makes a datetime of it.
        parts = {1900, 1, 1, Digits(text, 0, 2), Digits(text, 3, 2), Digits(text, 6, 2), Digits(text, 9, 3)};
    } else {
        parts = {Digits(text, 0, 4),  Digits(text, 5, 2),  Digits(text, 8, 2), Digits(text, 11, 2),
                 Digits(text, 14, 2), Digits(text, 17, 2), Digits(text, 20, 3)};
    }
    if (const auto date = DateTime::FromParts(parts)) return *date;
    throw automation::Error(automation::error_number::kTypeMismatch,
                            "The account set holds a date that cannot be read: " + std::string(text));
}

std::string StoredDecimal(const Decimal& number) {
    std::string text = number.ToText();
    if (number.Scale() == 0) return text;
    std::size_t end = text.find_last_not_of('0') + 1;
    if (text[end - 1] == '.') --end;
    text.resize(end);
    return text;
}

Decimal ReadStoredDecimal(std::string_view text) {
    if (const auto decimal = Decimal::Parse(text)) return *decimal;
    throw automation::Error(automation::error_number::kTypeMismatch,
                            "The account set holds a decimal that cannot be read: " + std::string(text));
}

Decimal ReadStoredDecimal(std::string_view text, const SqlType& type) {
    const Decimal number = ReadStoredDecimal(text);
    if (number.Scale() == type.scale) return number;
    try {
        return number.Rescaled(type.scale);
    } catch (const automation::Error&) {
        // 38 digits before the point leave no room for the places of an average.
        return number;
    }
}

namespace {

// A plain number taken apart: digits before the point without leading zeros, behind it without trailing ones.
struct PlainNumber {
    bool negative = false;
    std::string_view whole;
    std::string_view fraction;
};

bool TakeApart(std::string_view text, PlainNumber& number) noexcept {
    number.negative = !text.empty() && text.front() == '-';
    if (number.negative) text.remove_prefix(1);
    const std::size_t point = text.find('.');
    number.whole = text.substr(0, point);
    number.fraction = point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
    if (number.whole.empty() && number.fraction.empty()) return false;
    for (const std::string_view digits : {number.whole, number.fraction}) {
        for (const char c : digits) {
            if (c < '0' || c > '9') return false;
        }
    }
    while (!number.whole.empty() && number.whole.front() == '0')
        number.whole.remove_prefix(1);
    while (!number.fraction.empty() && number.fraction.back() == '0')
        number.fraction.remove_suffix(1);
    if (number.whole.empty() && number.fraction.empty()) number.negative = false;
    return true;
}

}  // namespace

int CompareGuids(std::string_view a, std::string_view b) noexcept {
    constexpr std::size_t kLength = 36;
    if (a.size() != kLength || b.size() != kLength) return a.compare(b);
    // Where the bytes stand in the text, the one that decides most first.
    static constexpr std::size_t kBytes[] = {24, 26, 28, 30, 32, 34, 19, 21, 16, 14, 11, 9, 6, 4, 2, 0};
    for (const std::size_t at : kBytes) {
        if (const int order = a.compare(at, 2, b, at, 2); order != 0) return order;
    }
    return 0;
}

int CompareStoredDecimals(std::string_view a, std::string_view b) noexcept {
    if (a == b) return 0;
    PlainNumber left;
    PlainNumber right;
    const bool isLeft = TakeApart(a, left);
    const bool isRight = TakeApart(b, right);
    // A damaged number must still have one place in the order.
    if (!isLeft || !isRight) return !isLeft && !isRight ? a.compare(b) : !isLeft ? -1 : 1;
    if (left.negative != right.negative) return left.negative ? -1 : 1;
    int order = 0;
    if (left.whole.size() != right.whole.size()) {
        order = left.whole.size() < right.whole.size() ? -1 : 1;
    } else {
        order = left.whole.compare(right.whole);
        if (order == 0) order = left.fraction.compare(right.fraction);
    }
    return left.negative ? -order : order;
}

}  // namespace vicenter::tsql::engine
