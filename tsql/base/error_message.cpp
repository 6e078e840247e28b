// Messages with their slots filled, and errors made of them.

#include <algorithm>
#include <cassert>

#include "tsql/base/error_table.h"

namespace vicenter::tsql {

std::string FormatMessage(std::string_view message, std::initializer_list<ErrorArgument> arguments) {
    // Longest first: "%ls" must not be read out of "%.*ls".
    static constexpr std::string_view kSlots[] = {"%S_MSG", "%.*ls", "%I64d", "%ls", "%hs",
                                                  "%ld",    "%s",    "%d",    "%f"};
    std::string result;
    const auto* next = arguments.begin();
    for (std::size_t at = 0; at < message.size();) {
        if (message[at] != '%') {
            result += message[at++];
            continue;
        }
        if (message.substr(at, 2) == "%%") {
            result += '%';
            at += 2;
            continue;
        }
        const std::string_view rest = message.substr(at);
        const auto* slot = std::find_if(std::begin(kSlots), std::end(kSlots),
                                        [&](std::string_view s) { return rest.starts_with(s); });
        if (slot == std::end(kSlots)) {
            result += message[at++];
            continue;
        }
        if (next != arguments.end()) result += (next++)->Text();
        at += slot->size();
    }
    return result;
}

SqlError MakeError(std::int32_t number, Position where, std::initializer_list<ErrorArgument> arguments,
                   std::int32_t state) {
    const ErrorEntry* entry = FindError(number);
    assert(entry);
    Diagnostic diagnostic;
    diagnostic.number = number;
    diagnostic.severity = entry ? entry->severity : 16;
    diagnostic.state = state;
    diagnostic.line = static_cast<std::int32_t>(where.line);
    diagnostic.column = static_cast<std::int32_t>(where.column);
    diagnostic.text = entry ? FormatMessage(entry->message, arguments) : std::string();
    return SqlError(std::move(diagnostic));
}

}  // namespace vicenter::tsql
