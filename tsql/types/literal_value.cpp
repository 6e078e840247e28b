#include "tsql/types/literal_value.h"

#include <charconv>
#include <cmath>

#include "automation/variant.h"
#include "text/hex.h"
#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"

namespace vicenter::tsql::engine {

namespace {

int Length(std::string_view text) {
    const std::size_t units = UnitCount(text);
    return units == 0 ? 1 : static_cast<int>(units);
}

SqlType DecimalLiteralType(std::string_view text) {
    const std::size_t point = text.find('.');
    std::string_view whole = text.substr(0, point);
    const std::size_t scale = point == std::string_view::npos ? 0 : text.size() - point - 1;
    while (!whole.empty() && whole.front() == '0')
        whole.remove_prefix(1);
    const std::size_t precision = whole.size() + scale;
    return SqlType::Decimal(precision == 0 ? 1 : static_cast<int>(precision), static_cast<int>(scale));
}

std::string FromHexadecimal(std::string_view text) {
    std::string digits(text);
    if (digits.size() % 2 != 0) digits.insert(0, 1, '0');
    std::string bytes;
    for (std::size_t at = 0; at < digits.size(); at += 2) {
        bytes += static_cast<char>(text::HexValue(digits[at]) << 4 | text::HexValue(digits[at + 1]));
    }
    return bytes;
}

}  // namespace

SqlType LiteralType(LiteralKind kind, std::string_view text) {
    switch (kind) {
        case LiteralKind::kInteger: {
            std::int32_t number = 0;
            const auto end = text.data() + text.size();
            const auto result = std::from_chars(text.data(), end, number);
            if (result.ec == std::errc() && result.ptr == end) return SqlType::Int();
            return DecimalLiteralType(text);
        }
        case LiteralKind::kDecimal:
            return DecimalLiteralType(text);
        case LiteralKind::kFloat:
            return SqlType::Float();
        case LiteralKind::kMoney:
            return SqlType::Of(TypeKind::kMoney);
        case LiteralKind::kString:
            return SqlType::VarChar(Length(text));
        case LiteralKind::kNString:
            return SqlType::NVarChar(Length(text));
        case LiteralKind::kBinary:
            return SqlType::Of(TypeKind::kVarBinary,
                               text.empty() ? 1 : static_cast<int>((text.size() + 1) / 2));
        case LiteralKind::kNull:
        case LiteralKind::kDefault:
            break;
    }
    return {};
}

Value ValueOfLiteral(LiteralKind kind, std::string_view text, bool negated) {
    switch (kind) {
        case LiteralKind::kInteger: {
            std::int32_t number = 0;
            const auto end = text.data() + text.size();
            const auto result = std::from_chars(text.data(), end, number);
            if (result.ec == std::errc() && result.ptr == end)
                return Value(std::int64_t{negated ? -number : number});
            [[fallthrough]];
        }
        case LiteralKind::kDecimal:
        case LiteralKind::kMoney: {
            // A lone currency sign is nothing of that currency.
            auto number = text.empty() ? Decimal(0) : Decimal::Parse(text);
            // A number of more than 38 digits.
            if (!number) throw MakeError(1007, {}, {text});
            if (negated && !number->IsZero()) number = number->Negated();
            return Value(kind == LiteralKind::kMoney ? number->Rescaled(4) : *number);
        }
        case LiteralKind::kFloat: {
            const auto number = automation::ParseDouble(text);
            if (!number) throw MakeError(8115, {}, {"expression", "float"});
            constexpr int kBytes = 8;
            if (std::isinf(*number)) throw MakeError(168, {}, {text, kBytes});
            return Value(negated ? -*number : *number);
        }
        case LiteralKind::kString:
        case LiteralKind::kNString:
            return Value(text);
        case LiteralKind::kBinary:
            return Value(Bytes{FromHexadecimal(text)});
        case LiteralKind::kNull:
        case LiteralKind::kDefault:
            break;
    }
    return {};
}

}  // namespace vicenter::tsql::engine
