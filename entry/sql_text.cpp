#include "entry/sql_text.h"

#include "platform/system/utf8.h"

namespace vicenter::entry {

namespace {

void AppendEscaped(std::string& sql, std::string_view text) {
    for (std::size_t from = 0;;) {
        const std::size_t quote = text.find('\'', from);
        if (quote == std::string_view::npos) {
            sql.append(text, from);
            return;
        }
        sql.append(text, from, quote + 1 - from).push_back('\'');
        from = quote + 1;
    }
}

}  // namespace

std::string SqlEscape(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 2);
    AppendEscaped(result, text);
    return result;
}

std::string SqlQuote(std::string_view text, bool addQuotes, bool trim) {
    if (addQuotes && trim) {
        std::string result;
        AppendSqlQuoted(result, text);
        return result;
    }
    const std::string escaped = SqlEscape(trim ? system::TrimBlanks(text) : text);
    return addQuotes ? "'" + escaped + "'" : escaped;
}

void AppendSqlQuoted(std::string& sql, std::string_view text) {
    sql += '\'';
    AppendEscaped(sql, system::TrimBlanks(text));
    sql += '\'';
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
