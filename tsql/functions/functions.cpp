#include "tsql/functions/functions.h"

#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"
#include "tsql/sqlite/database.h"
#include "tsql/types/convert.h"

namespace vicenter::tsql::engine {

namespace {

int CompareTextValues(void* services, int sizeA, const void* a, int sizeB, const void* b) {
    auto& shared = *static_cast<FunctionServices*>(services);
    const std::string_view left(static_cast<const char*>(a), static_cast<std::size_t>(sizeA));
    const std::string_view right(static_cast<const char*>(b), static_cast<std::size_t>(sizeB));
    try {
        return CompareTexts(*shared.collation, left, right);
    } catch (...) {
        // SQLite takes no failure from a comparison: what was ordered by this answer is given up.
        shared.failedComparison = true;
        return left.compare(right);
    }
}

int CompareNumberValues(void*, int sizeA, const void* a, int sizeB, const void* b) noexcept {
    const std::string_view left(static_cast<const char*>(a), static_cast<std::size_t>(sizeA));
    const std::string_view right(static_cast<const char*>(b), static_cast<std::size_t>(sizeB));
    return CompareStoredDecimals(left, right);
}

int CompareGuidValues(void*, int sizeA, const void* a, int sizeB, const void* b) noexcept {
    const std::string_view left(static_cast<const char*>(a), static_cast<std::size_t>(sizeA));
    const std::string_view right(static_cast<const char*>(b), static_cast<std::size_t>(sizeB));
    return CompareGuids(left, right);
}

}  // namespace

void FunctionServices::RememberKey(std::string_view column, std::string text) {
    for (KeyValue& key : keyValues) {
        if (key.column == column) {
            key.text = std::move(text);
            return;
        }
    }
    keyValues.push_back({std::string(column), std::move(text)});
}

const std::string* FunctionServices::FindKey(std::string_view column) const {
    for (const KeyValue& key : keyValues) {
        if (key.column == column) return &key.text;
    }
    return nullptr;
}

std::int64_t TypeCode(const SqlType& type) {
    return static_cast<std::int64_t>(type.kind) | std::int64_t{type.precision} << 8 |
           std::int64_t{type.scale} << 16 | std::int64_t{type.length + 1} << 24;
}

SqlType TypeFromCode(std::int64_t code) {
    SqlType type;
    type.kind = static_cast<TypeKind>(code & 0xFF);
    type.precision = static_cast<int>(code >> 8 & 0xFF);
    type.scale = static_cast<int>(code >> 16 & 0xFF);
    type.length = static_cast<int>(code >> 24) - 1;
    return type;
}

std::string KeyText(const Value& value, const SqlType& type) {
    if (value.IsNull()) return "<NULL>";
    return Convert(value, type, SqlType::NVarChar(kMaxLength), type.IsDate() ? 121 : 0).Text();
}

void RegisterFunctions(sqlite3* database, FunctionServices& services) {
    sqlite3_create_collation_v2(database, kTextCollationName, SQLITE_UTF8, &services, CompareTextValues,
                                nullptr);
    sqlite3_create_collation_v2(database, kNumberCollationName, SQLITE_UTF8, nullptr, CompareNumberValues,
                                nullptr);
    sqlite3_create_collation_v2(database, kGuidCollationName, SQLITE_UTF8, nullptr, CompareGuidValues,
                                nullptr);
    RegisterRows(database);
    for (const SqlFunction* body : AllSqlFunctions()) {
        const int flags = SQLITE_UTF8 | (body->deterministic ? SQLITE_DETERMINISTIC : 0);
        if (body->value != nullptr) {
            sqlite3_create_window_function(database, body->name, body->arguments, flags, &services,
                                           body->step, body->finish, body->value, body->inverse, nullptr);
        } else {
            sqlite3_create_function_v2(database, body->name, body->arguments, flags, &services, body->run,
                                       body->step, body->finish, nullptr);
        }
    }
}

}  // namespace vicenter::tsql::engine
