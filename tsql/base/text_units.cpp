#include "tsql/base/text_units.h"

namespace vicenter::tsql::engine {

std::size_t CharacterBytes(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    std::size_t size = 1;
    if (lead >= 0xF0 && lead < 0xF8) {
        size = 4;
    } else if (lead >= 0xE0) {
        size = 3;
    } else if (lead >= 0xC2) {
        size = 2;
    }
    if (lead >= 0xF8 || at + size > text.size()) return 1;
    for (std::size_t i = 1; i < size; ++i) {
        if ((static_cast<unsigned char>(text[at + i]) & 0xC0) != 0x80) return 1;
    }
    return size;
}

std::size_t UnitCount(std::string_view text) {
    std::size_t units = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        // Every character once by its first byte, twice when it takes four bytes.
        if ((byte & 0xC0) != 0x80) units += byte >= 0xF0 ? 2 : 1;
    }
    return units;
}

std::string_view HeadUnits(std::string_view text, std::size_t units) {
    if (text.size() <= units) return text;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t bytes = CharacterBytes(text, at);
        const std::size_t needed = bytes == 4 ? 2 : 1;
        if (needed > units) break;
        units -= needed;
        at += bytes;
    }
    return text.substr(0, at);
}

std::string_view TailUnits(std::string_view text, std::size_t units) {
    std::size_t at = 0;
    while (at < text.size() && units > 0) {
        const std::size_t bytes = CharacterBytes(text, at);
        const std::size_t taken = bytes == 4 ? 2 : 1;
        units -= taken < units ? taken : units;
        at += bytes;
    }
    return text.substr(at);
}

std::string_view WithoutTrailingBlanks(std::string_view text) {
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

std::string_view WithoutLeadingBlanks(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    return text;
}

std::string LowerAscii(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

}  // namespace vicenter::tsql::engine
