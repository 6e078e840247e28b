#include <charconv>
#include <cstdint>

#include "platform/office/limits.h"
#include "platform/office/utf.h"
#include "platform/office/xml_scanner.h"
#include "text/hex.h"

namespace vicenter::office {

namespace {

// The code unit of "_xHHHH_" at the start of the text; -1 for anything else.
int PackageEscape(std::string_view text) {
    if (text.size() < 7 || text[0] != '_' || text[1] != 'x' || text[6] != '_') return -1;
    int unit = 0;
    for (std::size_t i = 2; i < 6; ++i) {
        const int digit = text::HexValue(text[i]);
        if (digit < 0) return -1;
        unit = unit * 16 + digit;
    }
    return unit;
}

void AppendPackageEscape(std::string& to, unsigned unit) {
    to += "_x";
    for (int shift = 12; shift >= 0; shift -= 4)
        to += text::kHexDigits[(unit >> shift) & 0xF];
    to += '_';
}

bool IsPlain(unsigned char c) {
    return c >= 0x20 && c < 0x80 && c != '&' && c != '<' && c != '>' && c != '"' && c != '_';
}

}  // namespace

void AppendXmlDecoded(std::string& to, std::string_view raw) {
    std::size_t at = 0;
    while (true) {
        const std::size_t mark = raw.find('&', at);
        if (mark == std::string_view::npos) {
            to.append(raw.substr(at));
            return;
        }
        to.append(raw.substr(at, mark - at));
        const std::size_t end = raw.find(';', mark);
        if (end == std::string_view::npos) FailDamaged("XML 引用");
        const std::string_view name = raw.substr(mark + 1, end - mark - 1);
        if (name == "amp") {
            to += '&';
        } else if (name == "lt") {
            to += '<';
        } else if (name == "gt") {
            to += '>';
        } else if (name == "quot") {
            to += '"';
        } else if (name == "apos") {
            to += '\'';
        } else if (name.size() > 1 && name[0] == '#') {
            const bool hexadecimal = name[1] == 'x';
            const char* first = name.data() + (hexadecimal ? 2 : 1);
            const char* last = name.data() + name.size();
            std::uint32_t code = 0;
            const auto [rest, error] = std::from_chars(first, last, code, hexadecimal ? 16 : 10);
            if (error != std::errc() || rest != last || first == last) FailDamaged("XML 引用");
            AppendUtf8(to, code);
        } else {
            FailDamaged("XML 引用");
        }
        at = end + 1;
    }
}

void AppendXmlEscaped(std::string& to, std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t start = at;
        while (at < text.size() && IsPlain(static_cast<unsigned char>(text[at])))
            ++at;
        to.append(text, start, at - start);
        if (at == text.size()) return;
        const auto c = static_cast<unsigned char>(text[at]);
        if (c >= 0x80) {
            const CodePoint next = ReadUtf8(text, at);
            if (next.code == 0xFFFE || next.code == 0xFFFF) {
                AppendPackageEscape(to, next.code);
            } else if (next.valid) {
                to.append(text, at, next.length);
            } else {
                to += "\xEF\xBF\xBD";
            }
            at += next.length;
            continue;
        }
        switch (c) {
            case '&':
                to += "&amp;";
                break;
            case '<':
                to += "&lt;";
                break;
            case '>':
                to += "&gt;";
                break;
            case '"':
                to += "&quot;";
                break;
            case '_':
                // A text that looks like an escape must come back as it was.
                if (PackageEscape(text.substr(at)) >= 0) {
                    to += "_x005F_";
                } else {
                    to += '_';
                }
                break;
            case '\t':
            case '\n':
                to += static_cast<char>(c);
                break;
            default:
                AppendPackageEscape(to, c);
                break;
        }
        ++at;
    }
}

void ResolvePackageEscapes(std::string& text) {
    std::size_t at = text.find("_x");
    if (at == std::string::npos) return;
    std::string result(text, 0, at);
    while (at < text.size()) {
        const int unit = text[at] == '_' ? PackageEscape(std::string_view(text).substr(at)) : -1;
        if (unit < 0) {
            result += text[at++];
            continue;
        }
        at += 7;
        auto code = static_cast<std::uint32_t>(unit);
        if (code >= 0xD800 && code < 0xDC00) {
            const int low = PackageEscape(std::string_view(text).substr(at));
            if (low >= 0xDC00 && low < 0xE000) {
                code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<std::uint32_t>(low) - 0xDC00);
                at += 7;
            }
        }
        AppendUtf8(result, code);
    }
    text = std::move(result);
}

}  // namespace vicenter::office
