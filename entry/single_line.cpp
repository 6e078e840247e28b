#include "entry/single_line.h"

#include <algorithm>

#include "text/utf8.h"

namespace vicenter::entry {

std::string_view WithoutLineEnd(std::string_view text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.remove_suffix(1);
    return text;
}

bool HasControlCharacter(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7F;
    });
}

bool BreaksOrHides(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

std::string InOneLine(std::string_view given) {
    std::string shown;
    shown.reserve(given.size());
    for (std::size_t at = 0; at < given.size();) {
        const text::CodePoint point = text::ReadUtf8(given, at);
        const std::string_view own = given.substr(at, point.length);
        at += point.length;
        if (!point.valid || !BreaksOrHides(point.code)) {
            shown += own;
        } else if (point.code == '\t') {
            shown += ' ';
        } else if (point.code == '\r' || point.code == '\n' || point.code == 0x85 || point.code == 0x2028 ||
                   point.code == 0x2029) {
            if (point.code == '\r' && given.substr(at, 1) == "\n") ++at;
            shown += "\u21B5";
        } else {
            shown += "\u25A1";
        }
    }
    return shown;
}

}  // namespace vicenter::entry
