#pragma once

// Patterns of LIKE and PATINDEX: % _ [a-z] [^…] and an escape character. Pure functions.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "tsql/base/interruption.h"
#include "tsql/types/collation.h"

namespace vicenter::tsql::engine {

// Blanks behind the text may be left over where neither side is Unicode; otherwise the pattern has to name
// them.
enum class TrailingBlanks : std::uint8_t { kIgnored, kCount };

// The escape character is one character of UTF-8, or empty.
// `stopping` ends a long search: SqlError 3617.
bool MatchesPattern(const TextCollation& collation, std::string_view text, std::string_view pattern,
                    std::string_view escape = {}, TrailingBlanks blanks = TrailingBlanks::kIgnored,
                    Interruption* stopping = nullptr);

// PATINDEX: where a match begins, counted in characters from 1; 0 when there is none.
std::size_t FindPattern(const TextCollation& collation, std::string_view text, std::string_view pattern,
                        Interruption* stopping = nullptr);

}  // namespace vicenter::tsql::engine
