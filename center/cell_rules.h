#pragma once

// What a cell takes and how it is shown: pure functions of a column and a text.
//
// A cell's text is the plain value: digits as typed, '.' as the decimal sign, no thousands separators. It is
// what goes into SQL. DisplayText() is for painting alone, so nothing that is painted ever comes back as a
// value.

#include <string>
#include <string_view>

namespace vicenter::center {

// A decimal number in plain form: blanks around, optional sign, digits with at most one '.', at least one
// digit. No exponent, no hexadecimal, no separators, no currency signs.
bool IsPlainNumber(std::string_view text);

// False for a character that typing refuses in that column: ' and | everywhere, all but digits in column 1,
// all but digits (and one point in decimal columns) in number columns, everything in locked columns.
bool AcceptsCharacter(int column, char32_t character);

enum class TextVerdict {
    Taken,
    Locked,        // the column is filled by look-ups only
    BadCharacter,  // ' or | or a control character, or a character that is no part of a number
    TooLong,
    NotANumber,
    TooLarge,
    TooManyDecimals,
    NotInList,  // the direction column
};

// Whether a whole text may be typed or pasted into the column. The empty text is always taken but by a locked
// one.
TextVerdict CheckTypedText(int column, std::string_view text);
// The same while the text is still being typed: "12." and "." may become numbers.
bool MayBecomeTypedText(int column, std::string_view text);
// Why not, for messages and tooltips; the empty text for Taken.
std::string VerdictText(TextVerdict verdict, int column);

// Whether a program may put the text there: column 1 takes digits up to 2147483647 and the id columns whole
// numbers, since both go into SQL as they stand; every other column takes any text.
bool AcceptsProgramText(int column, std::string_view text);

// The text as painted. Numbers of decimal columns get thousands separators, lose trailing zeros of the
// fraction but keep at least two decimals in amount and price columns; every other text is painted as it is.
std::string DisplayText(int column, std::string_view plain);

}  // namespace vicenter::center
