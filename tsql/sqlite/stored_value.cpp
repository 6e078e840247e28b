#include "tsql/sqlite/stored_value.h"

#include <new>

#include <sqlite3.h>

namespace vicenter::tsql::engine {

void CheckBound(int code) {
    if (code == SQLITE_NOMEM) throw std::bad_alloc();
}

Value ReadArgument(sqlite3_value* value, const SqlType& type) {
    const int held = sqlite3_value_type(value);
    if (held == SQLITE_NULL) return {};
    const auto text = [value] {
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
        if (bytes == nullptr) throw std::bad_alloc();  // the value is not NULL
        return std::string_view(bytes, static_cast<std::size_t>(sqlite3_value_bytes(value)));
    };
    switch (type.Storage()) {
        case StorageClass::kInteger:
            return Value(static_cast<std::int64_t>(sqlite3_value_int64(value)));
        case StorageClass::kReal:
            return Value(sqlite3_value_double(value));
        case StorageClass::kDecimal:
            return Value(ReadStoredDecimal(text(), type));
        case StorageClass::kDate:
            return Value(ReadStoredDate(text(), type));
        case StorageClass::kText:
            return Value(text());
        case StorageClass::kBinary: {
            const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
            const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
            if (bytes == nullptr && size > 0) throw std::bad_alloc();
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
        CheckBound(sqlite3_bind_text64(statement, parameter, text.data(), text.size(), SQLITE_TRANSIENT,
                                       SQLITE_UTF8));
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
            bindText(StoredDecimal(value.Exact()));
            break;
        case 4:
            bindText(StoredDate(value.Date(), type));
            break;
        case 5:
            bindText(value.Text());
            break;
        default:
            CheckBound(sqlite3_bind_blob64(statement, parameter, value.Blob().data(), value.Blob().size(),
                                           SQLITE_TRANSIENT));
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
            returnText(StoredDecimal(value.Exact()));
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
