#include "exchange/cell_reading.h"

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

}  // namespace

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

std::string WithoutInvisibleMarks(std::string_view text) {
    std::string plain(text);
    // The bytes that they begin with; neither ASCII nor the common Chinese characters do.
    if (text.find_first_of("\xC2\xE2\xEF") == std::string_view::npos) return plain;
    for (const std::string_view mark :
         {"\u00AD", "\u200B", "\u200C", "\u200D", "\u200E", "\u200F", "\u2060", "\uFEFF"}) {
        for (std::size_t at = plain.find(mark); at != std::string::npos; at = plain.find(mark, at)) {
            plain.erase(at, mark.size());
        }
    }
    return plain;
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
