#include "platform/system/utf8.h"

#include <algorithm>
#include <cstdint>

namespace vicenter::system {

namespace {

struct Character {
    char32_t code = 0xFFFD;
    std::size_t bytes = 1;
    bool valid = false;
};

// The character at the head of a text that is not empty. A malformed sequence is one byte long.
Character Decode(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return {lead, 1, true};
    std::size_t length = 0;
    char32_t code = 0;
    char32_t least = 0;
    if ((lead & 0xE0) == 0xC0) {
        length = 2, code = lead & 0x1F, least = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3, code = lead & 0x0F, least = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4, code = lead & 0x07, least = 0x10000;
    }
    if (length == 0 || text.size() < length) return {};
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return {};
        code = (code << 6) | (byte(i) & 0x3F);
    }
    if (code < least || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return {};
    return {code, length, true};
}

void Encode(char32_t code, std::string& text) {
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | (code >> 6));
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | (code >> 12));
        text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | (code >> 18));
        text += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    }
}

// Lower case of the scripts whose letters come in pairs at fixed distances: ASCII, Latin-1, Greek, Cyrillic
// and the full-width forms.
char32_t SimpleLower(char32_t code) {
    if (code < 0x80) return code >= 'A' && code <= 'Z' ? code + 32 : code;
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
        text.remove_prefix(Decode(text).bytes);
        ++count;
    }
    return count;
}

std::size_t CodeUnitCount(std::string_view text) {
    std::size_t count = 0;
    while (!text.empty()) {
        const Character character = Decode(text);
        count += character.code >= 0x10000 ? 2 : 1;
        text.remove_prefix(character.bytes);
    }
    return count;
}

std::string_view Head(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    while (count > 0 && end < text.size()) {
        end += Decode(text.substr(end)).bytes;
        --count;
    }
    return text.substr(0, end);
}

bool IsValidUtf8(std::string_view text) {
    while (!text.empty()) {
        const Character character = Decode(text);
        if (!character.valid) return false;
        text.remove_prefix(character.bytes);
    }
    return true;
}

std::u16string ToUtf16(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Character character = Decode(text);
        if (character.code >= 0x10000) {
            const char32_t rest = character.code - 0x10000;
            result += static_cast<char16_t>(0xD800 + (rest >> 10));
            result += static_cast<char16_t>(0xDC00 + (rest & 0x3FF));
        } else {
            result += static_cast<char16_t>(character.code);
        }
        text.remove_prefix(character.bytes);
    }
    return result;
}

std::string FromUtf16(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        const bool high = unit >= 0xD800 && unit <= 0xDBFF;
        if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            Encode(0x10000 + ((unit - 0xD800) << 10) + (text[i + 1] - 0xDC00), result);
            ++i;
        } else if (unit >= 0xD800 && unit <= 0xDFFF) {
            Encode(0xFFFD, result);
        } else {
            Encode(unit, result);
        }
    }
    return result;
}

std::string_view TrimBlanks(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

std::size_t FindIgnoringCase(std::string_view text, std::string_view part, std::size_t from) {
    for (std::size_t start = from; start <= text.size();) {
        std::string_view rest = text.substr(start);
        std::string_view wanted = part;
        while (!wanted.empty() && !rest.empty()) {
            const Character a = Decode(rest);
            const Character b = Decode(wanted);
            const bool same = a.valid && b.valid ? SimpleLower(a.code) == SimpleLower(b.code)
                                                 : a.valid == b.valid && rest.front() == wanted.front();
            if (!same) break;
            rest.remove_prefix(a.bytes);
            wanted.remove_prefix(b.bytes);
        }
        if (wanted.empty()) return start;
        if (start == text.size()) break;
        start += Decode(text.substr(start)).bytes;
    }
    return std::string_view::npos;
}

}  // namespace vicenter::system
