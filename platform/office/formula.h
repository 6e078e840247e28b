#pragma once

// Simple formulas: what people type into a sheet of vouchers, calculated where a file holds no result.
//
// Arithmetic, joined texts, cells and ranges of the same sheet, SUM, ROUND, ABS, MIN, MAX and IF, of which
// only the branch that is taken need be simple. Anything else is not answered, rather than answered wrongly.
// Pure functions; nothing refers to the formula afterwards.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vicenter::office {

struct FormulaValue {
    enum class Kind { Blank, Number, Text };
    Kind kind = Kind::Blank;
    double number = 0;
    std::string text;
};

// The value of a cell of the formula's sheet, counted from 0; nothing when it has none that can be told.
using FormulaCells = std::function<std::optional<FormulaValue>(std::uint32_t row, std::uint32_t column)>;

// The value of a formula (without its "="), numbers rounded to the 15 digits that a sheet shows. Nothing for
// a formula that is not simple, or a result that is an error.
std::optional<FormulaValue> CalculateFormula(std::string_view formula, const FormulaCells& cells);

}  // namespace vicenter::office
