#include "entry/single_line.h"

#include <algorithm>

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

std::string InOneLine(std::string_view text) {
    constexpr std::string_view kLineEnd = "\u21B5";
    constexpr std::string_view kUnseen = "\u25A1";
    std::string shown;
    shown.reserve(text.size());
    const auto next = [&](std::size_t i, std::string_view what) {
        return text.substr(i, what.size()) == what;
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte == '\r' || byte == '\n') {
            if (next(i, "\r\n")) ++i;
            shown += kLineEnd;
        } else if (byte == '\t') {
            shown += ' ';
        } else if (byte < 0x20 || byte == 0x7F) {
            shown += kUnseen;
        } else if (byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0) {
            shown += next(i, "\u0085") ? kLineEnd : kUnseen;  // U+0080 to U+009F
            ++i;
        } else if (next(i, "\u2028") || next(i, "\u2029")) {
            shown += kLineEnd;
            i += 2;
        } else if ((next(i, "\xE2\x80") && i + 2 < text.size() && text[i + 2] >= '\xAA' &&
                    text[i + 2] <= '\xAE') ||
                   (next(i, "\xE2\x81") && i + 2 < text.size() && text[i + 2] >= '\xA6' &&
                    text[i + 2] <= '\xA9')) {
            shown += kUnseen;  // U+202A to U+202E, U+2066 to U+2069
            i += 2;
        } else {
            shown += text[i];
        }
    }
    return shown;
}

}  // namespace vicenter::entry
