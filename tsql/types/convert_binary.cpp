#include "tsql/types/convert_binary.h"

#include <algorithm>

#include "text/hex.h"
#include "text/utf8.h"
#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"

namespace vicenter::tsql::engine {

namespace {

bool IsAscii(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return (c & 0x80) == 0; });
}

char32_t UnitAt(std::string_view bytes, std::size_t at) {
    const auto low = static_cast<unsigned char>(bytes[at]);
    // Half a unit at the end is one without its upper half.
    const auto high = at + 1 < bytes.size() ? static_cast<unsigned char>(bytes[at + 1]) : 0U;
    return high << 8 | low;
}

// "0x4142" by style 1, "4142" by style 2.
std::string BytesOfHexadecimal(const std::string& text, const SqlType& from, const SqlType& to, int style) {
    std::string_view digits = WithoutTrailingBlanks(text);
    const bool isMarked = digits.starts_with("0x") || digits.starts_with("0X");
    if (style == 1 && isMarked) digits.remove_prefix(2);
    bool sound = digits.size() % 2 == 0 && isMarked == (style == 1);
    for (const char c : digits)
        sound = sound && text::IsHexDigit(c);
    if (!sound) throw MakeError(8114, {}, {from.Name(), to.Name()});
    std::string bytes;
    for (std::size_t at = 0; at < digits.size(); at += 2)
        bytes += static_cast<char>(text::HexValue(digits[at]) << 4 | text::HexValue(digits[at + 1]));
    return bytes;
}

bool IsLead(char32_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool IsTrail(char32_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

}  // namespace

std::string BytesOfText(std::string_view text, bool unicode, const std::string& name) {
    if (!unicode) {
        if (!IsAscii(text)) throw MakeError(40510, {}, {name});
        return std::string(text);
    }
    std::string bytes;
    const auto add = [&bytes](char32_t unit) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    };
    for (std::size_t at = 0; at < text.size();) {
        const text::CodePoint point = text::ReadUtf8(text, at);
        at += point.length;
        if (text::CodeUnits(point.code) == 2) {
            add(0xD7C0 + (point.code >> 10));
            add(0xDC00 + (point.code & 0x3FF));
        } else {
            add(point.code);
        }
    }
    return bytes;
}

std::string TextOfBytes(std::string_view bytes, bool unicode, const std::string& name) {
    if (!unicode) {
        if (!IsAscii(bytes)) throw MakeError(40510, {}, {name});
        return std::string(bytes);
    }
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 2) {
        char32_t unit = UnitAt(bytes, at);
        const bool isPair = IsLead(unit) && at + 3 < bytes.size() && IsTrail(UnitAt(bytes, at + 2));
        if (isPair) {
            unit = (unit - 0xD7C0) * 0x400 + UnitAt(bytes, at + 2) - 0xDC00;
            at += 2;
        }
        text::AppendUtf8(text, unit);
    }
    return text;
}

Value ToBinary(const Value& value, const SqlType& from, const SqlType& to, int style) {
    const auto name = [&] {
        return "CONVERT of " + std::string(from.Name()) + " to " + std::string(to.Name());
    };
    std::string bytes;
    if (from.IsText() && (style == 1 || style == 2)) {
        bytes = BytesOfHexadecimal(value.Text(), from, to, style);
    } else if (from.IsText()) {
        bytes = BytesOfText(value.Text(), from.IsUnicode(), name() + " beyond ASCII");
    } else if (from.IsBinary()) {
        bytes = value.Blob();
    } else if (from.IsInteger()) {
        const auto number = static_cast<std::uint64_t>(value.Int());
        for (int shift = (StoredBytes(from) - 1) * 8; shift >= 0; shift -= 8)
            bytes += static_cast<char>(number >> shift & 0xFF);
    } else {
        throw MakeError(40510, {}, {name()});
    }
    if (to.length > 0) {
        const auto size = static_cast<std::size_t>(to.length);
        if (bytes.size() > size)
            bytes = from.IsInteger() ? bytes.substr(bytes.size() - size) : bytes.substr(0, size);
        if (to.kind == TypeKind::kBinary && bytes.size() < size)
            bytes.insert(from.IsInteger() ? 0 : bytes.size(), size - bytes.size(), '\0');
    }
    return Value(Bytes{std::move(bytes)});
}

}  // namespace vicenter::tsql::engine
