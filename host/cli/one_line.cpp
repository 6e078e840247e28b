#include "host/cli/one_line.h"

#include <cstdint>

namespace vicenter::host {

namespace {

std::string Escaped(std::uint32_t character) {
    switch (character) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            break;
    }
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text = "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        text += kDigits[(character >> static_cast<unsigned>(shift)) & 0xF];
    return text;
}

// The control character or separator of lines that the text begins with, and its bytes; 0 for any other.
std::uint32_t SeparatorAt(std::string_view text, std::size_t& bytes) {
    const auto byte = [&](std::size_t at) -> std::uint32_t {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
    };
    bytes = 1;
    if (byte(0) < 0x20 || byte(0) == 0x7F) return byte(0);
    if (byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) < 0xA0) {
        bytes = 2;
        return byte(1);
    }
    if (byte(0) == 0xE2 && byte(1) == 0x80 && (byte(2) == 0xA8 || byte(2) == 0xA9)) {
        bytes = 3;
        return 0x2000 + (byte(2) - 0x80);
    }
    return 0;
}

}  // namespace

std::string OneLine(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        std::size_t bytes = 1;
        const std::uint32_t separator = SeparatorAt(text, bytes);
        if (separator != 0 || text.front() == '\0') {
            line += Escaped(separator);
        } else {
            line += text.front();
        }
        text.remove_prefix(bytes);
    }
    return line;
}

}  // namespace vicenter::host
