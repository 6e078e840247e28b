#include "platform/system/utf8.h"

#include <algorithm>

#include "text/ascii.h"
#include "text/blanks.h"
#include "text/utf8.h"

namespace vicenter::system {

namespace {

using text::AppendUtf8;
using text::CodePoint;

// The character at the head of a text that is not empty.
CodePoint Decode(std::string_view text) {
    return text::ReadUtf8(text, 0);
}

// Lower case of the scripts whose letters come in pairs at fixed distances: ASCII, Latin-1, Greek, Cyrillic
// and the full-width forms.
char32_t SimpleLower(char32_t code) {
    if (code < 0x80) return static_cast<unsigned char>(text::LowerAscii(static_cast<char>(code)));
    if ((code >= 0xC0 && code <= 0xDE && code != 0xD7) || (code >= 0x391 && code <= 0x3A9 && code != 0x3A2) ||
        (code >= 0x410 && code <= 0x42F) || (code >= 0xFF21 && code <= 0xFF3A)) {
        return code + 32;
    }
    if (code >= 0x400 && code <= 0x40F) return code + 80;
    return code;
}

}  // namespace

std::size_t CharacterCount(std::string_view text) {
    std::size_t count = 0;
    while (!text.empty()) {
        text.remove_prefix(Decode(text).length);
        ++count;
    }
    return count;
}

std::size_t CodeUnitCount(std::string_view text) {
    std::size_t count = 0;
    while (!text.empty()) {
        const CodePoint character = Decode(text);
        count += text::CodeUnits(character.code);
        text.remove_prefix(character.length);
    }
    return count;
}

std::string_view Head(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    while (count > 0 && end < text.size()) {
        end += Decode(text.substr(end)).length;
        --count;
    }
    return text.substr(0, end);
}

bool IsValidUtf8(std::string_view text) {
    while (!text.empty()) {
        const CodePoint character = Decode(text);
        if (!character.valid) return false;
        text.remove_prefix(character.length);
    }
    return true;
}

std::u16string ToUtf16(std::string_view text) {
    // No character has more units than bytes.
    std::u16string result(text.size(), u'\0');
    char16_t* out = result.data();
    while (!text.empty()) {
        const auto byte = static_cast<unsigned char>(text.front());
        if (byte < 0x80) {
            *out++ = byte;
            text.remove_prefix(1);
            continue;
        }
        const CodePoint character = Decode(text);
        if (character.code >= 0x10000) {
            const char32_t rest = character.code - 0x10000;
            *out++ = static_cast<char16_t>(0xD800 + (rest >> 10));
            *out++ = static_cast<char16_t>(0xDC00 + (rest & 0x3FF));
        } else {
            *out++ = static_cast<char16_t>(character.code);
        }
        text.remove_prefix(character.length);
    }
    result.resize(static_cast<std::size_t>(out - result.data()));
    return result;
}

std::string FromUtf16(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        if (unit < 0x80) {
            result += static_cast<char>(unit);
            continue;
        }
        const bool high = unit >= 0xD800 && unit <= 0xDBFF;
        if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            AppendUtf8(result, 0x10000 + ((unit - 0xD800) << 10) + (text[i + 1] - 0xDC00));
            ++i;
        } else if (unit >= 0xD800 && unit <= 0xDFFF) {
            AppendUtf8(result, 0xFFFD);
        } else {
            AppendUtf8(result, unit);
        }
    }
    return result;
}

std::string_view TrimBlanks(std::string_view text) {
    return text::Trimmed(text, text::kSpace);
}

std::size_t FindIgnoringCase(std::string_view text, std::string_view part, std::size_t from) {
    for (std::size_t start = from; start <= text.size();) {
        std::string_view rest = text.substr(start);
        std::string_view wanted = part;
        while (!wanted.empty() && !rest.empty()) {
            const CodePoint a = Decode(rest);
            const CodePoint b = Decode(wanted);
            const bool same = a.valid && b.valid ? SimpleLower(a.code) == SimpleLower(b.code)
                                                 : a.valid == b.valid && rest.front() == wanted.front();
            if (!same) break;
            rest.remove_prefix(a.length);
            wanted.remove_prefix(b.length);
        }
        if (wanted.empty()) return start;
        if (start == text.size()) break;
        start += Decode(text.substr(start)).length;
    }
    return std::string_view::npos;
}

}  // namespace vicenter::system
