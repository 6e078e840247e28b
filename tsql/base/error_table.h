#pragma once

// The one table of error numbers: severity, message and what an error does to the batch. Feeds the code and
// docs/error-numbers.md. Constant data, readable from anywhere.

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "tsql/base/diagnostic.h"

namespace vicenter::tsql {

// What does not run any more, whether or not XACT_ABORT is on.
enum class Ends : std::uint8_t {
    kStatement,
    kText,  // the rest of the batch, the procedure or the dynamic text that it is in; who called that goes on
    kBatch,  // whatever called it, too
};

struct ErrorEntry {
    std::int32_t number;
    std::int32_t severity;
    Ends ends;
    // The server's own text. Slots are filled in order: %ls and %.*ls by texts, %d and %I64d by numbers,
    // %% is a percent sign.
    std::string_view message;
};

// All entries, ascending by number.
std::span<const ErrorEntry> ErrorTable();

// The entry of that number; none for user-defined numbers and numbers that are not in the table.
const ErrorEntry* FindError(std::int32_t number);

// A value for a slot: a text or a number.
class ErrorArgument {
  public:
    ErrorArgument(std::string_view text) : text_(text) {}    // NOLINT(google-explicit-constructor)
    ErrorArgument(const std::string& text) : text_(text) {}  // NOLINT(google-explicit-constructor)
    ErrorArgument(const char* text) : text_(text) {}         // NOLINT(google-explicit-constructor)
    ErrorArgument(std::int64_t number)
        : text_(std::to_string(number)) {}  // NOLINT(google-explicit-constructor)
    ErrorArgument(std::int32_t number)
        : text_(std::to_string(number)) {}  // NOLINT(google-explicit-constructor)

    const std::string& Text() const { return text_; }

  private:
    std::string text_;
};

// The message with its slots filled; slots without an argument stay empty.
std::string FormatMessage(std::string_view message, std::initializer_list<ErrorArgument> arguments);

// The error of that number, ready to throw. The number must be in the table.
SqlError MakeError(std::int32_t number, Position where, std::initializer_list<ErrorArgument> arguments = {},
                   std::int32_t state = 1);

}  // namespace vicenter::tsql
