#pragma once

// The text of a RAISERROR with its slots filled: %d, %i, %u, %o, %x, %X and %s with flags, width and
// precision, as C's printf has them. Pure.

#include <cstdint>
#include <string>
#include <vector>

namespace vicenter::tsql::engine {

struct MessageArgument {
    bool isNull = false;
    bool isInteger = false;  // else a text
    std::int64_t number = 0;
    std::string text;
};

// Throws SqlError 2787 for a slot of no known form and 2786 for an argument of another kind than its slot.
std::string FilledMessage(const std::string& message, const std::vector<MessageArgument>& arguments);

}  // namespace vicenter::tsql::engine
