#include "store/cell_rules.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "automation/decimal.h"
#include "entry/single_line.h"
#include "platform/system/utf8.h"
#include "store/number_text.h"

namespace vicenter::store {

namespace {

constexpr std::int64_t kLargestId = 2147483647;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool AllDigits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), IsDigit);
}

std::string_view WithoutLeadingZeros(std::string_view digits) {
    return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

// A run of digits compared with a limit of at most 10 digits.
bool ExceedsLimit(std::string_view digits, std::int64_t limit) {
    digits = WithoutLeadingZeros(digits);
    const std::string text = std::to_string(limit);
    if (digits.size() != text.size()) return digits.size() > text.size();
    return digits > text;
}

// Characters as the server counts them, UTF-16 code units: never more than bytes, which most texts can be
// told by.
bool IsLongerThan(std::string_view text, std::size_t characters) {
    return text.size() > characters && system::CodeUnitCount(text) > characters;
}

bool IsNumberKind(CellKind kind) {
    return kind == CellKind::Whole || kind == CellKind::Decimal;
}

TextVerdict CheckNumber(const ColumnSpec& spec, std::string_view text) {
    const std::optional<PlainNumberParts> parts = SplitPlainNumber(text);
    if (!parts || (parts->whole.empty() && parts->fraction.empty())) return TextVerdict::NotANumber;
    // The smallest value is 0, so that a sign has no place in a cell.
    if (parts->negative) return TextVerdict::Negative;
    if (text.front() == '+') return TextVerdict::NotANumber;
    if (parts->point && spec.kind == CellKind::Whole) return TextVerdict::NotWhole;
    if (parts->fraction.size() > static_cast<std::size_t>(spec.decimals)) {
        return TextVerdict::TooManyDecimals;
    }
    // With something behind the point the limit itself is too much.
    const bool someFraction = !WithoutLeadingZeros(parts->fraction).empty();
    return ExceedsLimit(parts->whole, someFraction ? kLargestNumber - 1 : kLargestNumber)
               ? TextVerdict::TooLarge
               : TextVerdict::Taken;
}

// Zeros behind the last digit that the column has room for say nothing.
std::string WithoutSurplusZeros(const ColumnSpec& spec, std::string number) {
    const std::size_t point = number.find('.');
    if (point == std::string::npos) return number;
    const std::size_t last = number.find_last_not_of('0');
    const std::size_t room = point + 1 + static_cast<std::size_t>(spec.decimals);
    if (number.size() > room) number.resize(std::max(std::min(number.size(), room), last + 1));
    if (spec.kind != CellKind::Decimal && number.back() == '.') number.pop_back();
    return number;
}

// A number without anything that a person adds to one.
TextReading ReadBareNumber(const ColumnSpec& spec, std::string_view text) {
    std::string cell = WithoutSurplusZeros(spec, std::string(text));
    const TextVerdict verdict = CheckTypedText(spec.column, cell);
    return {verdict, verdict == TextVerdict::Taken ? std::move(cell) : std::string(text)};
}

// What the accounting format of spreadsheets shows for zero: a dash, a currency sign before it or not.
bool IsDashForZero(std::string_view text) {
    std::string number = TrimmedOfAnyBlanks(text);
    if (!number.ends_with('-')) return false;
    number.back() = '0';
    return number.find_first_of("+-(") == std::string::npos && ReadNumberText(number) == "0";
}

TextReading ReadNumber(const ColumnSpec& spec, std::string_view text, TextOrigin origin) {
    const auto refused = [text](TextVerdict verdict) { return TextReading{verdict, std::string(text)}; };
    if (IsBareNumber(text)) return ReadBareNumber(spec, text);
    if (TrimmedOfAnyBlanks(text).empty()) return {};
    if (origin == TextOrigin::Given && IsNumberKind(spec.kind) && IsDashForZero(text)) return {};
    const bool calculates =
        IsNumberKind(spec.kind) && (origin == TextOrigin::Typed ? IsCalculation(text) : HasEqualsSign(text));
    std::optional<std::string> plain;
    if (calculates) {
        const std::optional<automation::Decimal> value = Calculate(text);
        if (!value) return refused(TextVerdict::NoCalculation);
        // A result is as exact as the column; a whole number is not made of a broken one.
        plain = spec.kind == CellKind::Decimal && value->Scale() > spec.decimals
                    ? value->Rescaled(spec.decimals).ToShortText()
                    : value->ToShortText();
    } else {
        plain = ReadNumberText(text);
    }
    if (!plain) {
        const TextVerdict verdict = CheckTypedText(spec.column, text);
        return refused(verdict == TextVerdict::Taken ? TextVerdict::NotANumber : verdict);
    }
    TextReading reading = ReadBareNumber(spec, *plain);
    return reading.verdict == TextVerdict::Taken ? reading : refused(reading.verdict);
}

bool HasRefusedCharacter(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return c == '\'' || c == '|' || byte < 0x20 || byte == 0x7F;
    });
}

}  // namespace

TextVerdict CheckTypedText(int gridColumn, std::string_view text) {
    const ColumnSpec& spec = Column(gridColumn);
    if (spec.locked) return TextVerdict::Locked;
    if (text.empty()) return TextVerdict::Taken;
    if (HasRefusedCharacter(text)) return TextVerdict::BadCharacter;
    switch (spec.kind) {
        case CellKind::TemplateNumber:
            if (!AllDigits(text)) return TextVerdict::BadCharacter;
            if (text.size() > static_cast<std::size_t>(spec.maxCharacters)) return TextVerdict::TooLong;
            return ExceedsLimit(text, kLargestTemplateNumber) ? TextVerdict::TooLarge : TextVerdict::Taken;
        case CellKind::Direction:
            // The list's first choice is a pair of blanks.
            return text == kDebit || text == kCredit || system::TrimBlanks(text).empty()
                       ? TextVerdict::Taken
                       : TextVerdict::NotInList;
        case CellKind::Whole:
        case CellKind::Decimal:
            return CheckNumber(spec, text);
        case CellKind::Text:
        case CellKind::Id:
            break;
    }
    return IsLongerThan(text, static_cast<std::size_t>(spec.maxCharacters)) ? TextVerdict::TooLong
                                                                            : TextVerdict::Taken;
}

TextReading ReadCellText(int gridColumn, std::string_view text, TextOrigin origin) {
    const ColumnSpec& spec = Column(gridColumn);
    text = entry::WithoutLineEnd(text);
    if (IsLongerThan(text, kLongestKeptText)) return {TextVerdict::TooLong, std::string(text)};
    switch (spec.kind) {
        case CellKind::TemplateNumber:
        case CellKind::Whole:
        case CellKind::Decimal:
            return ReadNumber(spec, text, origin);
        case CellKind::Direction: {
            const std::string trimmed = TrimmedOfAnyBlanks(text);
            if (trimmed == kDebit || trimmed == kCredit) return {TextVerdict::Taken, trimmed};
            break;
        }
        case CellKind::Text:
        case CellKind::Id:
            break;
    }
    return {CheckTypedText(gridColumn, text), std::string(text)};
}

namespace {

std::string Grouped(std::string_view digits) {
    std::string result;
    result.reserve(digits.size() + digits.size() / 3);
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i != 0 && (digits.size() - i) % 3 == 0) result += ',';
        result += digits[i];
    }
    return result;
}

// Decimals that are painted even when they are zeros.
std::size_t FewestDecimals(int gridColumn) {
    return gridColumn == column::kAmount || gridColumn == column::kAmountFor || gridColumn == column::kPrice
               ? 2
               : 0;
}

}  // namespace

bool AcceptsCharacter(int gridColumn, char32_t character) {
    if (character == U'\'' || character == U'|' || character < 0x20 || character == 0x7F) return false;
    switch (Column(gridColumn).kind) {
        case CellKind::TemplateNumber:
            return character >= U'0' && character <= U'9';
        case CellKind::Id:
        case CellKind::Direction:
            return false;
        case CellKind::Whole:
        case CellKind::Decimal:
        case CellKind::Text:
            break;
    }
    return true;
}

std::string VerdictText(TextVerdict verdict, int gridColumn) {
    const ColumnSpec& spec = Column(gridColumn);
    switch (verdict) {
        case TextVerdict::Taken:
            return {};
        case TextVerdict::Locked:
            return "该列由系统填写，不能录入";
        case TextVerdict::BadCharacter:
            if (spec.kind == CellKind::TemplateNumber) return "只能录入数字";
            return "不能包含单引号、竖线或控制字符";
        case TextVerdict::TooLong:
            return "长度不能超过" +
                   std::to_string(spec.maxCharacters > 0 ? spec.maxCharacters
                                                         : static_cast<int>(kLongestKeptText)) +
                   "个字符";
        case TextVerdict::NotANumber:
            return spec.kind == CellKind::Whole ? "必须是不小于0的整数" : "必须是不小于0的数字";
        case TextVerdict::Negative:
            return "不能小于0";
        case TextVerdict::NotWhole:
            return "必须是整数";
        case TextVerdict::NoCalculation:
            return "算式不能计算";
        case TextVerdict::TooLarge:
            return "不能大于" +
                   std::to_string(IsNumberKind(spec.kind) ? kLargestNumber : kLargestTemplateNumber);
        case TextVerdict::TooManyDecimals:
            return "小数位数不能超过" + std::to_string(spec.decimals) + "位";
        case TextVerdict::NotInList:
            return "只能选择“借”或“贷”";
        case TextVerdict::NotLookedUp:
            return "基础资料无法读取，该代码尚未核对";
    }
    return {};
}

bool AcceptsProgramText(int gridColumn, std::string_view text) {
    switch (Column(gridColumn).kind) {
        case CellKind::TemplateNumber:
            return AllDigits(text) && !ExceedsLimit(text, kLargestTemplateNumber);
        case CellKind::Id: {
            if (text.empty()) return true;
            if (text.front() == '-') text.remove_prefix(1);
            return !text.empty() && AllDigits(text) && !ExceedsLimit(text, kLargestId);
        }
        default:
            return true;
    }
}

std::string DisplayText(int gridColumn, std::string_view plain) {
    if (Column(gridColumn).kind != CellKind::Decimal) return std::string(plain);
    const std::string_view trimmed = system::TrimBlanks(plain);
    const std::optional<PlainNumberParts> parts = SplitPlainNumber(trimmed);
    if (!parts || (parts->whole.empty() && parts->fraction.empty())) return std::string(plain);

    std::string result = parts->negative ? "-" : "";
    const std::string_view whole = WithoutLeadingZeros(parts->whole);
    result += whole.empty() ? "0" : Grouped(whole);
    const std::size_t lastDigit = parts->fraction.find_last_not_of('0');
    std::string fraction(parts->fraction.substr(0, lastDigit == std::string_view::npos ? 0 : lastDigit + 1));
    fraction.resize(std::max(fraction.size(), FewestDecimals(gridColumn)), '0');
    if (!fraction.empty()) result += "." + fraction;
    return result;
}

}  // namespace vicenter::store
