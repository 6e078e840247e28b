#pragma once

// Where a text stops being a JSON document. The codec raises its errors without a place, and takes a number
// from further on in the text where a value is none; what a person or a script hands over is therefore read
// here first.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vicenter::host {

struct JsonFault {
    std::size_t line = 1;
    std::size_t column = 1;  // in characters
    std::string text;
};

// The first fault of a text that should be one object and nothing else.
std::optional<JsonFault> FindJsonFault(std::string_view text);

}  // namespace vicenter::host
