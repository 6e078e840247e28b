#pragma once

// Cell values as texts and texts as numbers, as a person reads a sheet and types it again. Pure functions.

#include <optional>
#include <string>
#include <string_view>

#include "automation/variant.h"

namespace vicenter::exchange {

// What one would type to get the value: 1001 for a number, the digits for a text, "2024-01-02" for a date,
// "10:20:30" for a time alone, "TRUE", "#N/A"; the empty text for an empty cell. Blanks at the ends are
// dropped.
std::string CellAsTyped(const automation::Variant& value);

// A code that is a number, as its cell's number format shows it: "1001.10" with "0.00", "0012" with "0000".
// Left as it is where the format would round it or shows more than digits, which is how codes are typed.
std::string WithZerosOf(std::string code, std::string_view format);

// The side that a cell names: true for 借, false for 贷, compared without width and case. Nothing for any
// other text.
std::optional<bool> ReadDebit(std::string_view text);

// A number as people write it, by the one rule for every way in, and with an exponent besides. Nothing for
// any other text, dates and errors among them.
std::optional<double> ReadTypedNumber(std::string_view text);

// The same number as decimal text: digit for digit as it is typed, surplus zeros left out; of more digits
// than an exact decimal has, the nearest number's. Nothing for any other text.
std::optional<std::string> TypedNumberAsDecimal(std::string_view text);

// The decimal digits that read back as the same number, without exponent as far as digits suffice.
std::string CanonicalNumber(double value);

}  // namespace vicenter::exchange
