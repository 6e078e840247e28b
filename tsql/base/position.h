#pragma once

// A place in a batch text. Lines and columns count from 1, columns in bytes of UTF-8; a plain value.

#include <cstdint>

namespace vicenter::tsql {

struct Position {
    std::uint32_t offset = 0;
    std::uint32_t line = 1;
    std::uint32_t column = 1;

    friend bool operator==(const Position&, const Position&) = default;
};

}  // namespace vicenter::tsql
