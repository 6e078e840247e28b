#pragma once

// Values on their way into SQL text, and numbers on their way out of texts. Pure functions.

#include <string>
#include <string_view>

#include "automation/variant.h"

namespace vicenter::entry {

using automation::Variant;

// Joins the statements of a batch.
inline constexpr const char* kCrLf = "\r\n";

// The text with every apostrophe doubled.
std::string SqlEscape(std::string_view text);
// The text without blanks at its ends (trim), apostrophes doubled, in apostrophes (addQuotes).
std::string SqlQuote(std::string_view text, bool addQuotes = true, bool trim = true);
// Appends what SqlQuote(text) gives; for batches of many values.
void AppendSqlQuoted(std::string& sql, std::string_view text);
// As SqlQuote; null counts as the empty text. A value that is no text (an array, say) gives the empty text.
std::string SqlText(const Variant& value, bool addQuotes = true, bool trim = true);
// As SqlText, but an empty value with blankAsNull is the bare word Null.
std::string SqlValue(const Variant& value, bool addQuotes, bool blankAsNull, bool trim);

// The number that a text begins with: blanks skipped, an optional sign, digits with an optional fraction;
// whatever follows is ignored. 0 for a text that begins otherwise.
double LeadingNumber(std::string_view text);

}  // namespace vicenter::entry
