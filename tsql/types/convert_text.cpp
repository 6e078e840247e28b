#include "tsql/types/convert_text.h"

#include <cstdio>

#include "text/hex.h"
#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"
#include "tsql/types/convert.h"
#include "tsql/types/convert_binary.h"
#include "tsql/types/date_text.h"

namespace vicenter::tsql::engine {

namespace {

std::string FloatText(double number, int style) {
    // Six significant digits, and three digits of the exponent, as the server writes them.
    char buffer[64];
    const int digits = style == 1 ? 8 : style == 2 ? 16 : style == 3 ? 17 : 6;
    std::snprintf(buffer, sizeof buffer, style == 0 ? "%.*g" : "%.*e", style == 0 ? digits : digits - 1,
                  number);
    std::string text = buffer;
    const std::size_t exponent = text.find('e');
    if (exponent != std::string::npos && text.size() - exponent == 4) text.insert(exponent + 2, 1, '0');
    return text;
}

std::string MoneyText(const Decimal& number, int style) {
    const bool isWhole = style == 2 || style == 126;
    std::string text = number.Rescaled(isWhole ? 4 : 2).ToText();
    if (style != 1) return text;
    const std::size_t first = text.front() == '-' ? 1 : 0;
    for (std::size_t at = text.find('.'); at > first + 3;) {
        at -= 3;
        text.insert(at, 1, ',');
    }
    return text;
}

}  // namespace

std::string ToPlainText(const Value& value, const SqlType& from, const SqlType& to, int style) {
    switch (from.Storage()) {
        case StorageClass::kInteger:
            return std::to_string(value.Int());
        case StorageClass::kReal:
            return FloatText(value.Real(), style);
        case StorageClass::kDecimal:
            return from.IsMoney() ? MoneyText(value.Exact(), style) : value.Exact().ToText();
        case StorageClass::kDate: {
            auto text = FormatDate(value.Date(), from, style);
            // By the calendar of the Hijra.
            if (!text && (style == 130 || style == 131))
                throw MakeError(40510, {}, {"CONVERT style " + std::to_string(style)});
            if (!text) throw MakeError(281, {}, {style, from.Name()});
            return *text;
        }
        case StorageClass::kText:
            return value.Text();
        case StorageClass::kBinary: {
            if (style == 0) {
                return TextOfBytes(
                    value.Blob(), to.IsUnicode(),
                    "CONVERT of " + std::string(from.Name()) + " beyond ASCII to " + std::string(to.Name()));
            }
            std::string text = style == 1 ? "0x" : "";
            for (const char byte : value.Blob())
                text::AppendHex(text, static_cast<unsigned char>(byte));
            return text;
        }
    }
    return {};
}

std::string Padded(std::string text, const SqlType& to) {
    if (!to.IsFixedText() || to.length <= 0) return text;
    const std::size_t units = UnitCount(text);
    const auto wanted = static_cast<std::size_t>(to.length);
    if (units < wanted) text.append(wanted - units, ' ');
    return text;
}

bool IsTooLong(std::string_view text, const SqlType& to) {
    if (to.length <= 0 || text.size() <= static_cast<std::size_t>(to.length)) return false;
    return UnitCount(text) > static_cast<std::size_t>(to.length);
}

Value ToText(const Value& value, const SqlType& from, const SqlType& to, int style) {
    std::string text = ToPlainText(value, from, to, style);
    if (IsTooLong(text, to)) {
        if (from.IsInteger() && !to.IsUnicode() && from.kind != TypeKind::kBigInt) {
            text = "*";
        } else if (from.IsMoney()) {
            throw MakeError(234, {}, {from.Name(), to.Name()});
        } else if (from.IsNumber()) {
            throw MakeError(8115, {}, {from.IsInteger() ? "expression" : MessageName(from), to.Name()});
        } else {
            text = HeadUnits(text, static_cast<std::size_t>(to.length));
        }
    }
    return Value(Padded(std::move(text), to));
}

}  // namespace vicenter::tsql::engine
