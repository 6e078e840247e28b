#include "tsql/base/text_units.h"

#include "text/blanks.h"
#include "text/utf8.h"

namespace vicenter::tsql::engine {

std::size_t CharacterBytes(std::string_view text, std::size_t at) {
    return text::ReadUtf8(text, at).length;
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

std::string_view WithoutLeadingBlanks(std::string_view text) {
    return text::WithoutLeading(text, text::kSpace);
}

std::string UpperAscii(std::string_view mixed) {
    std::string upper(mixed);
    for (char& c : upper)
        c = text::UpperAscii(c);
    return upper;
}

}  // namespace vicenter::tsql::engine
