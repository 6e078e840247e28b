#include "host/cli/one_line.h"

#include "entry/single_line.h"
#include "text/hex.h"
#include "text/utf8.h"

namespace vicenter::host {

namespace {

std::string Escaped(char32_t code) {
    switch (code) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            break;
    }
    std::string escaped = "\\u";
    text::AppendHex(escaped, static_cast<unsigned char>(code >> 8));
    text::AppendHex(escaped, static_cast<unsigned char>(code & 0xFF));
    return escaped;
}

}  // namespace

std::string OneLine(std::string_view given) {
    std::string line;
    for (std::size_t at = 0; at < given.size();) {
        const text::CodePoint point = text::ReadUtf8(given, at);
        if (point.valid && entry::BreaksOrHides(point.code)) {
            line += Escaped(point.code);
        } else {
            line += given.substr(at, point.length);
        }
        at += point.length;
    }
    return line;
}

}  // namespace vicenter::host
