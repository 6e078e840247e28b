#pragma once

// The formula of a cell of an ".xls" file, which lies there as tokens in the order of calculation, as the
// text that a person would have typed. A pure function.

#include <optional>
#include <string>
#include <string_view>

namespace vicenter::office {

// tokens: the formula's own, without the constants behind them. What a sheet's simple formulas are made of is
// written out; functions and names beyond that become words that no calculation knows. Nothing for tokens
// that cannot be told.
std::optional<std::string> XlsFormulaText(std::string_view tokens);

}  // namespace vicenter::office
