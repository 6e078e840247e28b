#pragma once

// What a cell takes and how it is shown: pure functions of a column and a text.
//
// A cell's text is the plain value: digits as typed, '.' as the decimal sign, no thousands separators. It is
// what goes into SQL. DisplayText() is for painting alone, so nothing that is painted ever comes back as a
// value. A text that its column does not take stays in the cell as it was given, beside the verdict on it,
// until it is mended.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "store/template_columns.h"

namespace vicenter::store {

// False for a character that is dropped at the key: ' and | everywhere, all but digits in column 1,
// everything in locked columns and in the direction list. Every other text is judged as a whole.
bool AcceptsCharacter(int column, char32_t character);

enum class TextVerdict : std::uint8_t {
    Taken,
    Locked,        // the column is filled by look-ups only
    BadCharacter,  // ' or | or a control character, or a character that is no part of a number
    TooLong,
    NotANumber,
    Negative,
    NotWhole,  // a fraction where a whole number is wanted
    TooLarge,
    TooManyDecimals,
    NoCalculation,  // what looks like one and cannot be done
    NotInList,      // the direction column
    NotLookedUp,    // a code whose record could not be read: nobody knows yet what it stands for
    Last = NotLookedUp,
};

// Whether a cell of the column may hold the text as it stands. The empty text is always taken but by a locked
// column.
TextVerdict CheckTypedText(int column, std::string_view text);

// How a text comes to a cell. Only what is typed is calculated without an equals sign before it.
enum class TextOrigin { Typed, Given };
struct TextReading {
    TextVerdict verdict = TextVerdict::Taken;
    std::string text;  // for the cell: the plain value, or what was given when it is refused
};
// What a cell of the column makes of a text, by the one rule for every way in: numbers lose separators,
// blanks, currency signs and full width, calculations become their value, line ends behind are dropped.
TextReading ReadCellText(int column, std::string_view text, TextOrigin origin);
// Texts of more characters than this are refused and not kept: no column takes a tenth of it.
inline constexpr std::size_t kLongestKeptText = 4000;

// Why not, for messages and tooltips; the empty text for Taken.
std::string VerdictText(TextVerdict verdict, int column);

// Whether a program may put the text there: column 1 takes digits up to 2147483647 and the id columns whole
// numbers, since both go into SQL as they stand; every other column takes any text.
bool AcceptsProgramText(int column, std::string_view text);

// The text as painted. Numbers of decimal columns get thousands separators, lose trailing zeros of the
// fraction but keep at least two decimals in amount and price columns; every other text is painted as it is.
std::string DisplayText(int column, std::string_view plain);

}  // namespace vicenter::store
