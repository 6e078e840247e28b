#pragma once

// What the sources of the SQLite functions share: arguments, results and the wrapper that keeps exceptions
// out of SQLite. Internal to the engine.

#include <cstdint>
#include <new>
#include <string>
#include <string_view>

#include <sqlite3.h>

#include "tsql/base/error_table.h"
#include "tsql/functions/function.h"
#include "tsql/functions/functions.h"
#include "tsql/sqlite/stored_value.h"

namespace vicenter::tsql::engine {

class FunctionCall {
  public:
    FunctionCall(sqlite3_context* context, int count, sqlite3_value** arguments)
        : context_(context),
          count_(count),
          arguments_(arguments),
          services_(*static_cast<FunctionServices*>(sqlite3_user_data(context))) {}

    FunctionServices& Services() const { return services_; }
    const TextCollation& Collation() const { return *services_.collation; }
    // Throws SqlError 3617 when the batch is to stop: for loops over long texts, every few thousand
    // characters.
    void CheckStop() const {
        if (services_.stopping != nullptr) services_.stopping->Check();
    }
    int Count() const { return count_; }
    bool IsNull(int i) const { return sqlite3_value_type(arguments_[i]) == SQLITE_NULL; }
    // The result stays NULL then.
    bool AnyNull() const {
        for (int i = 0; i < count_; ++i) {
            if (IsNull(i)) return true;
        }
        return false;
    }
    std::int64_t Int(int i) const { return sqlite3_value_int64(arguments_[i]); }
    double Real(int i) const { return sqlite3_value_double(arguments_[i]); }
    std::string_view Text(int i) const {
        const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(arguments_[i]));
        if (text == nullptr) {
            if (!IsNull(i)) throw std::bad_alloc();
            return {};
        }
        return {text, static_cast<std::size_t>(sqlite3_value_bytes(arguments_[i]))};
    }
    SqlType Type(int i) const { return TypeFromCode(Int(i)); }
    Value Argument(int i, const SqlType& type) const { return ReadArgument(arguments_[i], type); }
    // A decimal by its text, or an integer.
    Decimal Number(int i) const {
        if (sqlite3_value_type(arguments_[i]) == SQLITE_INTEGER) return Decimal(Int(i));
        return ReadStoredDecimal(Text(i));
    }
    bool IsInteger(int i) const { return sqlite3_value_type(arguments_[i]) == SQLITE_INTEGER; }

    void Return(const Value& value, const SqlType& type) const { ReturnValue(context_, value, type); }
    void ReturnArgument(int i) const { sqlite3_result_value(context_, arguments_[i]); }
    void Return(std::int64_t value) const { sqlite3_result_int64(context_, value); }
    void Return(double value) const { sqlite3_result_double(context_, value); }
    void Return(std::string_view text) const {
        // Without an address it would be NULL, and what is left of a text may be nothing.
        const char* at = text.empty() ? "" : text.data();
        sqlite3_result_text64(context_, at, text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    void Return(const Decimal& value) const { Return(std::string_view(StoredDecimal(value))); }
    sqlite3_context* Context() const { return context_; }

  private:
    sqlite3_context* context_;
    int count_;
    sqlite3_value** arguments_;
    FunctionServices& services_;
};

inline void Fail(sqlite3_context* context, FunctionServices& services, const SqlError& error) noexcept {
    try {
        services.pending = error;
        sqlite3_result_error(context, error.what(), -1);
    } catch (...) {
        sqlite3_result_error_nomem(context);
    }
}

// Runs a function body and keeps what it throws.
template <class Body>
void Guarded(sqlite3_context* context, FunctionServices& services, Body body) noexcept {
    try {
        try {
            body();
        } catch (const SqlError& error) {
            Fail(context, services, error);
        } catch (const automation::Error& error) {
            const bool overflow = error.Number() == automation::error_number::kOverflow;
            const bool zero = error.Number() == automation::error_number::kDivisionByZero;
            Fail(context, services,
                 zero       ? MakeError(8134, {})
                 : overflow ? MakeError(8115, {}, {"expression", "numeric"})
                            : MakeError(8624, {}, {error.Text()}));
        }
    } catch (...) {
        // No memory, not even to tell an error.
        sqlite3_result_error_nomem(context);
    }
}

template <void (*Body)(FunctionCall&)>
void Wrapped(sqlite3_context* context, int count, sqlite3_value** arguments) {
    FunctionCall call(context, count, arguments);
    Guarded(context, call.Services(), [&call] { Body(call); });
}

template <void (*Body)(FunctionCall&)>
constexpr SqlFunction Scalar(const char* name, int arguments, bool deterministic = true) {
    return {name, arguments, Wrapped<Body>, deterministic};
}

}  // namespace vicenter::tsql::engine
