#pragma once

// The functions and collations that translated statements call inside SQLite, all named ts_….
//
// Failures are SqlError: SQLite can carry only a text, so the error waits in the services until the statement
// that failed picks it up. Services belong to one session and outlive its database connection.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/base/diagnostic.h"
#include "tsql/base/interruption.h"
#include "tsql/types/collation.h"
#include "tsql/types/date_text.h"
#include "tsql/types/value.h"

struct sqlite3;

namespace vicenter::tsql::engine {

struct FunctionServices {
    const TextCollation* collation = nullptr;
    // Asked within functions that may take long; none where nothing is stopped.
    Interruption* stopping = nullptr;
    std::function<Value(std::string_view name, std::string_view type)> objectId;
    std::function<Value(std::string_view table, std::string_view column)> columnLength;
    // What the catalog says of an object or of a column of one, by its number; NULL where there is none.
    std::function<Value(std::int64_t id)> objectName;
    std::function<Value(std::int64_t id)> objectText;
    std::function<Value(std::int64_t id, std::string_view property)> objectProperty;
    std::function<Value(std::int64_t id, std::string_view column, std::string_view property)> columnProperty;
    std::function<Value(std::int64_t id, std::int64_t number)> columnName;
    std::function<Value(std::string_view variable)> variable;

    std::function<std::int64_t()> nextIdentity;
    std::function<void(std::int64_t given)> identityGiven;

    // SET DATEFORMAT as it is while the statement runs.
    DateFormat dateFormat = DateFormat::kMdy;

    std::optional<SqlError> pending;
    // A comparison could not be made, for lack of memory; the order that it gave must not be kept.
    bool failedComparison = false;
    // The last value on its way into each column of a unique key, for the message of a duplicate.
    struct KeyValue {
        std::string column;
        std::string text;
    };
    std::vector<KeyValue> keyValues;
    void RememberKey(std::string_view column, std::string text);
    const std::string* FindKey(std::string_view column) const;
};

// The table ts_rows, see kRowsTable.
int RegisterRows(sqlite3* database);

// Registers everything with one connection.
void RegisterFunctions(sqlite3* database, FunctionServices& services);

// A type as one number, to stand in translated statements.
std::int64_t TypeCode(const SqlType& type);
SqlType TypeFromCode(std::int64_t code);

// A value as messages about duplicate keys show it.
std::string KeyText(const Value& value, const SqlType& type);

}  // namespace vicenter::tsql::engine
