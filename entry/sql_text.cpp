#include "entry/sql_text.h"

#include "platform/system/utf8.h"

namespace vicenter::entry {

std::string SqlEscape(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 2);
    for (const char c : text) {
        result += c;
        if (c == '\'') result += c;
    }
    return result;
}

std::string SqlQuote(std::string_view text, bool addQuotes, bool trim) {
    const std::string escaped = SqlEscape(trim ? system::TrimBlanks(text) : text);
    return addQuotes ? "'" + escaped + "'" : escaped;
}

std::string SqlText(const Variant& value, bool addQuotes, bool trim) {
    try {
        return SqlQuote(value.ToTextOrEmpty(), addQuotes, trim);
    } catch (const automation::Error&) {
        return {};
    }
}

std::string SqlValue(const Variant& value, bool addQuotes, bool blankAsNull, bool trim) {
    try {
        const std::string text = value.ToTextOrEmpty();
        if (blankAsNull && (trim ? system::TrimBlanks(text) : text).empty()) return "Null";
        return SqlQuote(text, addQuotes, trim);
    } catch (const automation::Error&) {
        return {};
    }
}

double LeadingNumber(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    std::size_t end = 0;
    if (end < text.size() && (text[end] == '-' || text[end] == '+')) ++end;
    const auto skipDigits = [&] {
        const std::size_t start = end;
        while (end < text.size() && text[end] >= '0' && text[end] <= '9')
            ++end;
        return end > start;
    };
    bool digits = skipDigits();
    if (end < text.size() && text[end] == '.') {
        ++end;
        digits = skipDigits() || digits;
    }
    if (!digits) return 0;
    return automation::ParseDouble(text.substr(0, end)).value_or(0);
}

}  // namespace vicenter::entry
