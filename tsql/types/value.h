#pragma once

// One value of an expression, variable or column, apart from its type.
//
// What a value looks like inside SQLite depends on the storage class of its type: decimals and dates are
// texts there (see docs/account-set-format.md). A plain value.

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "automation/date_time.h"
#include "automation/decimal.h"
#include "tsql/types/sql_type.h"

namespace vicenter::tsql::engine {

using automation::DateTime;
using automation::Decimal;

struct Bytes {
    std::string data;
    friend bool operator==(const Bytes&, const Bytes&) = default;
};

class Value {
  public:
    using Data = std::variant<std::monostate, std::int64_t, double, Decimal, DateTime, std::string, Bytes>;

    Value() = default;  // NULL
    explicit Value(std::int64_t value) : data_(value) {}
    explicit Value(int value) : data_(std::int64_t{value}) {}
    explicit Value(double value) : data_(value) {}
    explicit Value(Decimal value) : data_(value) {}
    explicit Value(DateTime value) : data_(value) {}
    explicit Value(std::string value) : data_(std::move(value)) {}
    explicit Value(std::string_view value) : data_(std::string(value)) {}
    explicit Value(Bytes value) : data_(std::move(value)) {}

    bool IsNull() const { return data_.index() == 0; }
    std::int64_t Int() const { return std::get<std::int64_t>(data_); }
    double Real() const { return std::get<double>(data_); }
    const Decimal& Exact() const { return std::get<Decimal>(data_); }
    const DateTime& Date() const { return std::get<DateTime>(data_); }
    const std::string& Text() const { return std::get<std::string>(data_); }
    std::string TakeText() { return std::move(std::get<std::string>(data_)); }
    const std::string& Blob() const { return std::get<Bytes>(data_).data; }
    const Data& Raw() const { return data_; }

    friend bool operator==(const Value&, const Value&) = default;

  private:
    Data data_;
};

// The text by which a date is kept: it sorts as the dates do.
std::string StoredDate(const DateTime& date, const SqlType& type);
DateTime ReadStoredDate(std::string_view text, const SqlType& type);
// The one text of a decimal inside SQLite, whatever its scale: without zeros at the end of its fraction.
// Equal numbers have equal bytes; the places that a type has come back when a value of that type is read.
std::string StoredDecimal(const Decimal& number);
// Any spelling; throws Error when the account set holds a text that is no decimal.
Decimal ReadStoredDecimal(std::string_view text);
Decimal ReadStoredDecimal(std::string_view text, const SqlType& type);
// The order of uniqueidentifiers by their texts: the last group comes first, and the first three count byte
// by byte from their ends.
int CompareGuids(std::string_view a, std::string_view b) noexcept;
// The order of stored decimals by value, however they are spelt; what is no number comes first.
int CompareStoredDecimals(std::string_view a, std::string_view b) noexcept;

}  // namespace vicenter::tsql::engine
