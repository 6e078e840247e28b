#include "exchange/cell_reading.h"

#include <algorithm>
#include <cmath>

#include "automation/typed_date.h"
#include "platform/system/collation.h"
#include "platform/system/utf8.h"
#include "store/number_text.h"

namespace vicenter::exchange {

namespace {

using automation::Variant;
using automation::VariantType;

// The low half of an automation error code tells the error value.
std::string ErrorName(std::int32_t code) {
    switch (static_cast<std::uint32_t>(code) & 0xFFFF) {
        case 2000:
            return "#NULL!";
        case 2007:
            return "#DIV/0!";
        case 2023:
            return "#REF!";
        case 2029:
            return "#NAME?";
        case 2036:
            return "#NUM!";
        case 2042:
            return "#N/A";
        case 2050:
            return "#CALC!";
        default:
            return "#VALUE!";
    }
}

// Languages and colours change no digit; conditions, currencies and other numerals do.
bool ChangesWhatIsShown(std::string_view bracket) {
    constexpr std::string_view kOtherNumerals = "DBNum";
    if (bracket.starts_with("$-")) return false;
    return bracket.empty() || std::string_view("$<>=").find(bracket.front()) != std::string_view::npos ||
           bracket.starts_with(kOtherNumerals);
}

// The digits of a format's first section without all that only makes room beside them; nothing for one that
// shows more.
std::optional<std::string> DigitsOf(std::string_view format) {
    std::string digits;
    for (std::size_t at = 0; at < format.size() && format[at] != ';'; ++at) {
        switch (const char c = format[at]) {
            case '_':
            case '*':
                ++at;
                break;
            case '[': {
                const std::size_t end = std::min(format.find(']', at), format.size());
                if (ChangesWhatIsShown(format.substr(at + 1, end - at - 1))) return std::nullopt;
                at = end;
                break;
            }
            case '\\':
            case '"': {
                const std::size_t first = at + 1;
                at = c == '"' ? std::min(format.find('"', first), format.size()) : first;
                const std::string_view literal = format.substr(first, c == '"' ? at - first : 1);
                if (literal.find_first_not_of(' ') != literal.npos) return std::nullopt;
                break;
            }
            default:
                digits += c;
        }
    }
    return std::string(system::TrimBlanks(digits));
}

struct NumberParts {
    std::string_view whole;
    std::string_view decimals;
};

NumberParts PartsOf(std::string_view number) {
    const std::size_t point = std::min(number.find('.'), number.size());
    return {number.substr(0, point), number.substr(std::min(number.size(), point + 1))};
}

bool IsMadeOf(std::string_view text, std::string_view characters) {
    return text.find_first_not_of(characters) == text.npos;
}

}  // namespace

std::string WithZerosOf(std::string code, std::string_view format) {
    constexpr std::string_view kOptional = "#?";
    const std::optional<std::string> digits = DigitsOf(format);
    if (!digits) return code;
    auto [wholeZeros, decimalZeros] = PartsOf(*digits);
    wholeZeros.remove_prefix(std::min(wholeZeros.find_first_not_of(kOptional), wholeZeros.size()));
    const std::size_t mostDecimals = decimalZeros.size();
    decimalZeros = decimalZeros.substr(0, decimalZeros.find_first_of(kOptional));
    const std::string_view optionalDecimals = PartsOf(*digits).decimals.substr(decimalZeros.size());
    const auto [whole, decimals] = PartsOf(code);
    const bool zerosOnly = !wholeZeros.empty() && IsMadeOf(wholeZeros, "0") && IsMadeOf(decimalZeros, "0") &&
                           IsMadeOf(optionalDecimals, kOptional);
    const bool digitsOnly = !whole.empty() && IsMadeOf(code, "0123456789.");
    // A third section is the one that zeros are shown by.
    const bool ownZero = IsMadeOf(code, "0.") && std::count(format.begin(), format.end(), ';') > 1;
    if (!zerosOnly || !digitsOnly || ownZero || decimals.size() > mostDecimals) return code;
    const std::size_t before = wholeZeros.size() - std::min(wholeZeros.size(), whole.size());
    const std::size_t behind = decimalZeros.size() - std::min(decimalZeros.size(), decimals.size());
    if (decimals.empty() && behind > 0) code += '.';
    return std::string(before, '0') + code + std::string(behind, '0');
}

std::string CellAsTyped(const Variant& value) {
    switch (value.Type()) {
        case VariantType::Empty:
        case VariantType::Null:
            return {};
        case VariantType::Text:
            return std::string(system::TrimBlanks(value.AsText()));
        case VariantType::Boolean:
            return value.ToBoolean() ? "TRUE" : "FALSE";
        case VariantType::Error:
            return ErrorName(value.AsErrorCode());
        case VariantType::Date:
            return automation::DateAsTyped(value.ToDate());
        case VariantType::Double:
            return CanonicalNumber(value.ToDouble());
        default:
            return value.ToText();
    }
}

std::optional<bool> ReadDebit(std::string_view text) {
    if (text == "借") return true;
    if (text == "贷") return false;
    const std::string side = store::TrimmedOfAnyBlanks(text);
    if (side == "借") return true;
    if (side == "贷") return false;
    const auto& collator = system::Collator::Chinese();
    if (collator.Compare(side, "借") == 0) return true;
    if (collator.Compare(side, "贷") == 0) return false;
    return std::nullopt;
}

std::optional<double> ReadTypedNumber(std::string_view text) {
    std::optional<double> number;
    if (const std::optional<std::string> plain = store::ReadNumberText(text)) {
        number = automation::ParseDouble(*plain);
    } else if (text.find(',') == std::string_view::npos) {
        // With an exponent, as workbooks write large and small numbers.
        number = automation::ParseDouble(system::Collator::Chinese().Fold(text));
    }
    if (!number || !std::isfinite(*number)) return std::nullopt;
    return number;
}

std::optional<std::string> TypedNumberAsDecimal(std::string_view text) {
    if (const std::optional<std::string> plain = store::ReadNumberText(text)) {
        if (const auto exact = automation::Decimal::Parse(*plain)) return exact->ToShortText();
    }
    const std::optional<double> number = ReadTypedNumber(text);
    return number ? std::optional(CanonicalNumber(*number)) : std::nullopt;
}

std::string CanonicalNumber(double value) {
    if (value == 0) return "0";
    const double size = std::fabs(value);
    constexpr double kLargest = 1e21;
    constexpr double kSmallest = 1e-15;
    if (size >= kLargest || size < kSmallest) return automation::DoubleToText(value);
    try {
        return automation::Decimal::FromDouble(value).ToShortText();
    } catch (const automation::Error&) {
        return automation::DoubleToText(value);
    }
}

}  // namespace vicenter::exchange
