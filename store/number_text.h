#pragma once

// Numbers as people and other programs write them, by one rule whatever the way in: typed, pasted, imported,
// handed over as JSON. Pure functions; what a column takes of the number is the column's affair.

#include <optional>
#include <string>
#include <string_view>

#include "automation/decimal.h"

namespace vicenter::store {

// The parts of a plain number: digits, behind them possibly '.' and digits. The number may still be growing,
// so that both may be empty. Nothing for any other text, blanks around it among them.
struct PlainNumberParts {
    bool negative = false;
    bool point = false;
    std::string_view whole;
    std::string_view fraction;
};
std::optional<PlainNumberParts> SplitPlainNumber(std::string_view text);
// A decimal number in plain form: blanks around, optional sign, digits with at most one '.', at least one
// digit. No exponent, no hexadecimal, no separators, no currency signs.
bool IsPlainNumber(std::string_view text);
// The same without blanks and sign: digits with at most one '.', at least one digit.
bool IsBareNumber(std::string_view text);

// The number that is meant, in plain form: a '-' when it is negative, digits as written, '.' before a
// fraction. Taken are blanks around, thousands separators in their places, full-width digits and signs, a
// currency sign before or behind, brackets or a trailing minus for negative amounts. Nothing for any other
// text.
std::optional<std::string> ReadNumberText(std::string_view text);

// A text that wants to be calculated: "=100+200", or an expression without the sign ("860*3"). Dates are
// none.
bool IsCalculation(std::string_view text);
// A text that says so itself by its equals sign.
bool HasEqualsSign(std::string_view text);
// The value of a calculation in exact decimals: + - * / and brackets. A quotient that does not end has at
// least 18 digits behind the point. Nothing for what cannot be calculated.
std::optional<automation::Decimal> Calculate(std::string_view text);

// Without blanks of any width, line ends and invisible marks at both ends.
std::string TrimmedOfAnyBlanks(std::string_view text);
// The text without the marks that nobody sees (zero-width blanks and joiners, soft hyphens, byte order marks,
// marks of direction), which web pages and chat programs leave in copied codes and names.
std::string WithoutInvisibleMarks(std::string_view text);

}  // namespace vicenter::store
