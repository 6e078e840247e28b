#include "tsql/engine/value.h"

#include <sqlite3.h>

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

Value ReadArgument(sqlite3_value* value, const SqlType& type) {
    const int held = sqlite3_value_type(value);
    if (held == SQLITE_NULL) return {};
    const auto text = [value] {
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
        return std::string_view(bytes, static_cast<std::size_t>(sqlite3_value_bytes(value)));
    };
    switch (type.Storage()) {
        case StorageClass::kInteger:
            return Value(static_cast<std::int64_t>(sqlite3_value_int64(value)));
        case StorageClass::kReal:
            return Value(sqlite3_value_double(value));
        case StorageClass::kDecimal:
            return Value(ReadStoredDecimal(text()));
        case StorageClass::kDate:
            return Value(ReadStoredDate(text(), type));
        case StorageClass::kText:
            return Value(text());
        case StorageClass::kBinary: {
            const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
            const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
            return Value(Bytes{bytes == nullptr ? std::string() : std::string(bytes, size)});
        }
    }
    return {};
}

Value ReadColumn(sqlite3_stmt* statement, int column, const SqlType& type) {
    return ReadArgument(sqlite3_column_value(statement, column), type);
}

void BindValue(sqlite3_stmt* statement, int parameter, const Value& value, const SqlType& type) {
    const auto bindText = [&](std::string_view text) {
        sqlite3_bind_text64(statement, parameter, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    };
    switch (value.Raw().index()) {
        case 0:
            sqlite3_bind_null(statement, parameter);
            break;
        case 1:
            sqlite3_bind_int64(statement, parameter, value.Int());
            break;
        case 2:
            sqlite3_bind_double(statement, parameter, value.Real());
            break;
        case 3:
            bindText(value.Exact().ToText());
            break;
        case 4:
            bindText(StoredDate(value.Date(), type));
            break;
        case 5:
            bindText(value.Text());
            break;
        default:
            sqlite3_bind_blob64(statement, parameter, value.Blob().data(), value.Blob().size(),
                                SQLITE_TRANSIENT);
            break;
    }
}

void ReturnValue(sqlite3_context* context, const Value& value, const SqlType& type) {
    const auto returnText = [&](std::string_view text) {
        sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    };
    switch (value.Raw().index()) {
        case 0:
            sqlite3_result_null(context);
            break;
        case 1:
            sqlite3_result_int64(context, value.Int());
            break;
        case 2:
            sqlite3_result_double(context, value.Real());
            break;
        case 3:
            returnText(value.Exact().ToText());
            break;
        case 4:
            returnText(StoredDate(value.Date(), type));
            break;
        case 5:
            returnText(value.Text());
            break;
        default:
            sqlite3_result_blob64(context, value.Blob().data(), value.Blob().size(), SQLITE_TRANSIENT);
            break;
    }
}

}  // namespace vicenter::tsql::engine
