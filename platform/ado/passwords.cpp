#include "platform/ado/passwords.h"

#include "platform/ado/connection.h"

namespace vicenter::ado {

namespace {

constexpr std::string_view kKeywords[] = {"password", "pwd"};

bool IsWordByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool StandsAt(std::string_view text, std::size_t at, std::string_view word) {
    if (text.size() - at < word.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if ((text[at + i] | 0x20) != word[i]) return false;
    }
    return true;
}

std::size_t BehindBlanks(std::string_view text, std::size_t at) {
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t'))
        ++at;
    return at;
}

// Behind the keyword and its "=", or npos.
std::size_t ValueBehindKeyword(std::string_view text, std::size_t at) {
    if (at > 0 && IsWordByte(text[at - 1])) return std::string_view::npos;
    for (const std::string_view keyword : kKeywords) {
        if (!StandsAt(text, at, keyword)) continue;
        const std::size_t equals = BehindBlanks(text, at + keyword.size());
        if (equals < text.size() && text[equals] == '=') return BehindBlanks(text, equals + 1);
    }
    return std::string_view::npos;
}

std::size_t EndOfValue(std::string_view text, std::size_t at) {
    const char open = at < text.size() ? text[at] : '\0';
    if (open != '{' && open != '"' && open != '\'') {
        const std::size_t end = text.find_first_of(";\r\n", at);
        return end == std::string_view::npos ? text.size() : end;
    }
    const char close = open == '{' ? '}' : open;
    for (++at; at < text.size(); ++at) {
        if (text[at] != close) continue;
        if (at + 1 >= text.size() || text[at + 1] != close) return at + 1;
        ++at;
    }
    return at;
}

}  // namespace

std::vector<TextRange> PasswordsIn(std::string_view text) {
    std::vector<TextRange> found;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t value = ValueBehindKeyword(text, at);
        if (value == std::string_view::npos) continue;
        const std::size_t end = EndOfValue(text, value);
        if (end > value) found.push_back({value, end});
        at = end > at ? end - 1 : at;
    }
    return found;
}

std::string PasswordsHidden(std::string_view text) {
    std::string hidden;
    std::size_t copied = 0;
    for (const TextRange& range : PasswordsIn(text)) {
        hidden.append(text.substr(copied, range.begin - copied)).append("***");
        copied = range.end;
    }
    return hidden.append(text.substr(copied));
}

std::string WithoutPassword(std::string_view connectString) {
    const ConnectString settings(connectString);
    std::string text;
    for (const auto& [key, value] : settings.Pairs()) {
        bool secret = false;
        for (const std::string_view keyword : kKeywords)
            secret = secret || automation::SameName(key, keyword);
        if (!secret) text.append(key).append("=").append(value).append(";");
    }
    return text;
}

}  // namespace vicenter::ado
