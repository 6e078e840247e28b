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

Decimal ReadStoredDecimal(std::string_view text) {
    if (const auto decimal = Decimal::Parse(text)) return *decimal;
    throw automation::Error(automation::error_number::kTypeMismatch,
                            "The account set holds a decimal that cannot be read: " + std::string(text));
}

}  // namespace vicenter::tsql::engine
