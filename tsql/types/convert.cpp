#include "tsql/types/convert.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "automation/variant.h"
#include "text/blanks.h"
#include "text/hex.h"
#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"
#include "tsql/types/date_text.h"

namespace vicenter::tsql::engine {

namespace {

constexpr std::int64_t kMillisecondsPerDay = 86400000;
// Days from the zero of automation dates to SQL Server's, 1900-01-01.
constexpr std::int64_t kZeroDay = 2;

struct IntegerRange {
    std::int64_t low;
    std::int64_t high;
};

IntegerRange RangeOf(TypeKind kind) {
    switch (kind) {
        case TypeKind::kTinyInt:
            return {0, 255};
        case TypeKind::kSmallInt:
            return {-32768, 32767};
        case TypeKind::kInt:
            return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
        default:
            return {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
    }
}

std::string_view Trimmed(std::string_view text) {
    return text::Trimmed(text, text::kSpacesAndLineEnds);
}

[[noreturn]] void FailText(const std::string& text, const SqlType& from, const SqlType& to) {
    throw MakeError(245, {}, {from.Name(), text, to.Name()});
}

Value IntegerFromText(const std::string& text, const SqlType& from, const SqlType& to) {
    std::string_view digits = Trimmed(text);
    if (digits.empty()) return Value(0);
    const bool negative = digits.front() == '-';
    if (negative || digits.front() == '+') digits.remove_prefix(1);
    digits = WithoutLeadingBlanks(digits);
    if (digits.empty()) FailText(text, from, to);
    bool overflow = false;
    std::int64_t number = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9') FailText(text, from, to);
        const int digit = c - '0';
        // Counted downward, so that the smallest number fits.
        if (number < (std::numeric_limits<std::int64_t>::min() + digit) / 10) {
            overflow = true;
        } else {
            number = number * 10 - digit;
        }
    }
    if (!negative) {
        if (number == std::numeric_limits<std::int64_t>::min()) overflow = true;
        if (!overflow) number = -number;
    }
    if (to.kind == TypeKind::kBit) return Value(number != 0 || overflow ? 1 : 0);
    const IntegerRange range = RangeOf(to.kind);
    if (!overflow && number >= range.low && number <= range.high) return Value(number);
    switch (to.kind) {
        case TypeKind::kTinyInt:
            throw MakeError(244, {}, {from.Name(), text, "INT1"});
        case TypeKind::kSmallInt:
            throw MakeError(244, {}, {from.Name(), text, "INT2"});
        case TypeKind::kInt:
            throw MakeError(248, {}, {from.Name(), text});
        default:
            throw MakeError(8115, {}, {from.Name(), to.Name()});
    }
}

Value BitFromText(const std::string& text, const SqlType& from, const SqlType& to) {
    const std::string word = LowerAscii(Trimmed(text));
    if (word == "true") return Value(1);
    if (word == "false") return Value(0);
    return IntegerFromText(text, from, to);
}

Value FitInteger(std::int64_t number, const SqlType& to) {
    if (to.kind == TypeKind::kBit) return Value(number != 0 ? 1 : 0);
    const IntegerRange range = RangeOf(to.kind);
    if (number >= range.low && number <= range.high) return Value(number);
    if (to.kind == TypeKind::kTinyInt || to.kind == TypeKind::kSmallInt) {
        throw MakeError(220, {}, {to.Name(), number});
    }
    throw MakeError(8115, {}, {"expression", to.Name()});
}

Value ToInteger(const Value& value, const SqlType& from, const SqlType& to) {
    switch (from.Storage()) {
        case StorageClass::kInteger:
            return FitInteger(value.Int(), to);
        case StorageClass::kReal: {
            const double number = value.Real();
            if (to.kind == TypeKind::kBit) return Value(number != 0 ? 1 : 0);
            const IntegerRange range = RangeOf(to.kind);
            const double whole = std::trunc(number);
            if (!(whole >= static_cast<double>(range.low)) || !(whole <= static_cast<double>(range.high)) ||
                whole >= 9223372036854775808.0) {
                std::array<char, 400> digits{};
                std::snprintf(digits.data(), digits.size(), "%.6f", number);
                throw MakeError(232, {}, {to.Name(), digits.data()});
            }
            return Value(static_cast<std::int64_t>(whole));
        }
        case StorageClass::kDecimal: {
            const Decimal& number = value.Exact();
            if (to.kind == TypeKind::kBit) return Value(number.IsZero() ? 0 : 1);
            // money rounds, decimal cuts
            const auto whole = from.IsMoney() ? number.ToInt64() : number.TruncateToInt64();
            if (!whole) throw MakeError(8115, {}, {"expression", to.Name()});
            return FitInteger(*whole, to);
        }
        case StorageClass::kText:
            if (to.kind == TypeKind::kBit) return BitFromText(value.Text(), from, to);
            return IntegerFromText(value.Text(), from, to);
        case StorageClass::kDate: {
            const std::int64_t milliseconds = value.Date().Milliseconds() - kZeroDay * kMillisecondsPerDay;
            // Half a day rounds up.
            const std::int64_t shifted = milliseconds + kMillisecondsPerDay / 2;
            std::int64_t days = shifted / kMillisecondsPerDay;
            if (shifted % kMillisecondsPerDay < 0) --days;
            return FitInteger(days, to);
        }
        case StorageClass::kBinary: {
            std::uint64_t number = 0;
            for (const char byte : value.Blob())
                number = number << 8 | static_cast<unsigned char>(byte);
            if (to.kind == TypeKind::kInt) return Value(std::int64_t{static_cast<std::int32_t>(number)});
            return FitInteger(static_cast<std::int64_t>(number), to);
        }
    }
    return {};
}

Value FitDecimal(const Decimal& number, const SqlType& from, const SqlType& to) {
    try {
        const Decimal scaled = number.Rescaled(to.scale);
        if (FitsDecimal(scaled, to)) return Value(scaled);
    } catch (const automation::Error&) {
        // More than 38 digits: the same overflow.
    }
    throw MakeError(8115, {}, {MessageName(from), MessageName(to)});
}

std::optional<Decimal> MoneyFromText(std::string_view text) {
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == ',' || text[at] == '$') continue;
        // The signs of yuan and yen, narrow and wide, of pound and euro.
        const std::size_t at0 = at;
        for (const std::string_view sign : {"\xC2\xA5", "\xEF\xBF\xA5", "\xC2\xA3", "\xE2\x82\xAC"}) {
            if (text.substr(at0, sign.size()) == sign) at += sign.size() - 1;
        }
        if (at == at0) plain += text[at];
    }
    if (Trimmed(plain).empty()) return Decimal(0);
    return Decimal::Parse(plain);
}

Value ToDecimal(const Value& value, const SqlType& from, const SqlType& to) {
    switch (from.Storage()) {
        case StorageClass::kInteger:
            return FitDecimal(Decimal(value.Int()), from, to);
        case StorageClass::kReal:
            try {
                return FitDecimal(Decimal::FromDouble(value.Real()), from, to);
            } catch (const SqlError&) {
                throw;
            } catch (const automation::Error&) {
                throw MakeError(8115, {}, {from.Name(), MessageName(to)});
            }
        case StorageClass::kDecimal:
            return FitDecimal(value.Exact(), from, to);
        case StorageClass::kText: {
            const std::string_view text = Trimmed(value.Text());
            const auto number = to.IsMoney() ? MoneyFromText(text) : Decimal::Parse(text);
            if (number) return FitDecimal(*number, from, to);
            if (to.IsMoney()) throw MakeError(235, {});
            throw MakeError(8114, {}, {from.Name(), MessageName(to)});
        }
        case StorageClass::kDate: {
            const std::int64_t milliseconds = value.Date().Milliseconds() - kZeroDay * kMillisecondsPerDay;
            const auto days = static_cast<double>(milliseconds) / static_cast<double>(kMillisecondsPerDay);
            return FitDecimal(Decimal::FromDouble(days), from, to);
        }
        case StorageClass::kBinary:
            return FitDecimal(Decimal(ToInteger(value, from, SqlType::Of(TypeKind::kBigInt)).Int()), from,
                              to);
    }
    return {};
}

Value ToReal(const Value& value, const SqlType& from, const SqlType& to) {
    double number = 0;
    switch (from.Storage()) {
        case StorageClass::kInteger:
            number = static_cast<double>(value.Int());
            break;
        case StorageClass::kReal:
            number = value.Real();
            break;
        case StorageClass::kDecimal:
            number = value.Exact().ToDouble();
            break;
        case StorageClass::kText: {
            const std::string_view text = Trimmed(value.Text());
            if (text.empty()) break;
            auto parsed = automation::ParseDouble(text);
            if (!parsed) {
                // The exponent may be written with a d as well.
                std::string other(text);
                const std::size_t mark = other.find_first_of("dD");
                if (mark != std::string::npos) other[mark] = 'e';
                if (mark != std::string::npos) parsed = automation::ParseDouble(other);
            }
            if (!parsed) throw MakeError(8114, {}, {from.Name(), to.Name()});
            number = *parsed;
            break;
        }
        case StorageClass::kDate:
            number = static_cast<double>(value.Date().Milliseconds() - kZeroDay * kMillisecondsPerDay) /
                     static_cast<double>(kMillisecondsPerDay);
            break;
        case StorageClass::kBinary:
            number = static_cast<double>(ToInteger(value, from, SqlType::Of(TypeKind::kBigInt)).Int());
            break;
    }
    if (to.kind == TypeKind::kReal) {
        if (std::fabs(number) > static_cast<double>(std::numeric_limits<float>::max())) {
            throw MakeError(8115, {}, {from.Name(), to.Name()});
        }
        number = static_cast<double>(static_cast<float>(number));
    }
    return Value(number);
}

Value ToDate(const Value& value, const SqlType& from, const SqlType& to, int style) {
    std::optional<DateTime> date;
    switch (from.Storage()) {
        case StorageClass::kDate:
            date = value.Date();
            break;
        case StorageClass::kText: {
            bool outOfRange = false;
            date = ParseDate(value.Text(), style, &outOfRange);
            if (date) break;
            // The older types tell a day that does not exist from a text that is no date.
            const bool older = to.kind == TypeKind::kDateTime || to.kind == TypeKind::kSmallDateTime;
            if (outOfRange && older) throw MakeError(242, {}, {from.Name(), to.Name()});
            throw MakeError(241, {});
        }
        case StorageClass::kInteger:
        case StorageClass::kReal:
        case StorageClass::kDecimal: {
            const double days = ToReal(value, from, SqlType::Float()).Real() + static_cast<double>(kZeroDay);
            const double milliseconds = days * static_cast<double>(kMillisecondsPerDay);
            if (!(std::fabs(milliseconds) < 3e14)) throw MakeError(8115, {}, {"expression", to.Name()});
            date = AddToDate(DatePart::kMillisecond, std::llround(milliseconds), DateTime());
            if (!date) throw MakeError(8115, {}, {"expression", to.Name()});
            break;
        }
        case StorageClass::kBinary:
            throw MakeError(529, {}, {from.Name(), to.Name()});
    }
    const auto rounded = RoundToType(*date, to);
    if (!rounded) throw MakeError(242, {}, {from.Name(), to.Name()});
    return Value(*rounded);
}

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
    std::string text = number.Rescaled(style == 2 ? 4 : 2).ToText();
    if (style != 1) return text;
    const std::size_t first = text.front() == '-' ? 1 : 0;
    for (std::size_t at = text.find('.'); at > first + 3;) {
        at -= 3;
        text.insert(at, 1, ',');
    }
    return text;
}

std::string ToPlainText(const Value& value, const SqlType& from, int style) {
    switch (from.Storage()) {
        case StorageClass::kInteger:
            return std::to_string(value.Int());
        case StorageClass::kReal:
            return FloatText(value.Real(), style);
        case StorageClass::kDecimal:
            return from.IsMoney() ? MoneyText(value.Exact(), style) : value.Exact().ToText();
        case StorageClass::kDate: {
            auto text = FormatDate(value.Date(), from, style);
            if (!text) throw MakeError(281, {}, {style, from.Name()});
            return *text;
        }
        case StorageClass::kText:
            return value.Text();
        case StorageClass::kBinary: {
            if (style == 0) return value.Blob();
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
    std::string text = ToPlainText(value, from, style);
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

Value ToGuid(const Value& value, const SqlType& from, const SqlType& to) {
    if (from.IsText() || from.kind == TypeKind::kUniqueIdentifier) {
        std::string_view text = value.Text();
        if (text.size() > 36 && text.front() == '{') text = text.substr(1);
        text = text.substr(0, 36);
        std::string guid;
        for (std::size_t at = 0; at < text.size(); ++at) {
            const bool dash = at == 8 || at == 13 || at == 18 || at == 23;
            const char c = text[at];
            if (dash ? c != '-' : !text::IsHexDigit(c)) break;
            guid += text::UpperAscii(c);
        }
        if (guid.size() == 36) return Value(guid);
        throw MakeError(8169, {});
    }
    throw MakeError(529, {}, {from.Name(), to.Name()});
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

Value ToBinary(const Value& value, const SqlType& from, const SqlType& to, int style = 0) {
    std::string bytes;
    if (from.IsText() && (style == 1 || style == 2)) {
        bytes = BytesOfHexadecimal(value.Text(), from, to, style);
    } else if (from.IsText()) {
        bytes = value.Text();
    } else if (from.IsBinary()) {
        bytes = value.Blob();
    } else if (from.IsInteger()) {
        const auto number = static_cast<std::uint64_t>(value.Int());
        const int size = from.kind == TypeKind::kBigInt ? 8 : from.kind == TypeKind::kInt ? 4 : 2;
        for (int shift = (size - 1) * 8; shift >= 0; shift -= 8)
            bytes += static_cast<char>(number >> shift & 0xFF);
    } else {
        throw MakeError(529, {}, {from.Name(), to.Name()});
    }
    if (to.length > 0) {
        const auto size = static_cast<std::size_t>(to.length);
        if (bytes.size() > size)
            bytes = from.IsInteger() ? bytes.substr(bytes.size() - size) : bytes.substr(0, size);
        if (to.kind == TypeKind::kBinary) bytes.resize(size, '\0');
    }
    return Value(Bytes{std::move(bytes)});
}

}  // namespace

bool FitsDecimal(const Decimal& scaled, const SqlType& type) {
    if (!type.IsMoney())
        return scaled.IsZero() || scaled.Precision() - scaled.Scale() <= type.precision - type.scale;
    // Ten-thousandths in an integer of eight or four bytes, which reaches one further below zero.
    const std::uint64_t top = std::uint64_t{1} << (type.kind == TypeKind::kMoney ? 63 : 31);
    return scaled.Magnitude() <= (scaled.IsNegative() ? top : top - 1);
}

std::string MessageName(const SqlType& type) {
    return type.kind == TypeKind::kDecimal ? "numeric" : std::string(type.Name());
}

bool SameRepresentation(const SqlType& from, const SqlType& to) {
    if (from.IsUnknown()) return true;
    if (from == to) return true;
    if (from.IsInteger() && to.IsInteger()) {
        // Upward nothing changes; bit and tinyint are the only ones with a lower end of 0.
        return from.kind <= to.kind && to.kind != TypeKind::kBit;
    }
    if (from.IsText() && to.IsText()) {
        if (to.IsFixedText()) return false;
        return to.IsMax() || (!from.IsMax() && from.length <= to.length);
    }
    if (from.kind == TypeKind::kReal && to.kind == TypeKind::kFloat) return true;
    if (from.IsExact() && to.IsExact()) {
        // The places are not part of what is kept, so that more room changes nothing.
        const bool isWider = from.scale <= to.scale && from.precision - from.scale <= to.precision - to.scale;
        return isWider && (!to.IsMoney() || from.IsMoney());
    }
    return false;
}

void CheckConversion(const SqlType& from, const SqlType& to, bool isExplicit) {
    if (from.IsUnknown() || from.kind == to.kind) return;
    const bool guidFrom = from.kind == TypeKind::kUniqueIdentifier;
    const bool guidTo = to.kind == TypeKind::kUniqueIdentifier;
    const bool clash =
        (guidFrom && !to.IsText() && !to.IsBinary()) || (guidTo && !from.IsText() && !from.IsBinary()) ||
        (from.kind == TypeKind::kDate && to.IsNumber()) || (to.kind == TypeKind::kDate && from.IsNumber()) ||
        (from.kind == TypeKind::kTime && to.IsNumber()) || (to.kind == TypeKind::kTime && from.IsNumber());
    if (clash) throw MakeError(isExplicit ? 529 : 206, {}, {MessageName(from), MessageName(to)});
    if (isExplicit) return;
    const bool onlyExplicit = (from.IsDate() && to.IsNumber()) || (from.IsText() && to.IsBinary());
    if (onlyExplicit) throw MakeError(257, {}, {MessageName(from), MessageName(to)});
}

Value Convert(const Value& value, const SqlType& from, const SqlType& to, int style) {
    if (value.IsNull()) return {};
    if (from == to) return value;
    if (to.IsInteger()) return ToInteger(value, from, to);
    if (to.IsExact()) return ToDecimal(value, from, to);
    if (to.IsFloat()) return ToReal(value, from, to);
    if (to.IsText()) return ToText(value, from, to, style);
    if (to.IsDate()) return ToDate(value, from, to, style);
    if (to.kind == TypeKind::kUniqueIdentifier) return ToGuid(value, from, to);
    if (to.IsBinary()) return ToBinary(value, from, to, style);
    return value;
}

Value ConvertForColumn(const Value& value, const SqlType& from, const ColumnTarget& target,
                       std::string_view operation) {
    if (value.IsNull()) {
        if (target.nullable) return {};
        throw MakeError(515, {}, {target.column, target.table, operation});
    }
    const SqlType& to = target.type;
    if (to.IsText()) {
        std::string text = ToPlainText(value, from, 0);
        if (IsTooLong(text, to)) {
            if (from.IsMoney()) throw MakeError(234, {}, {from.Name(), to.Name()});
            if (from.IsNumber()) {
                throw MakeError(8115, {}, {from.IsInteger() ? "expression" : MessageName(from), to.Name()});
            }
            // Blanks at the end are cut without a word.
            std::string_view kept = HeadUnits(text, static_cast<std::size_t>(to.length));
            if (!WithoutTrailingBlanks(std::string_view(text).substr(kept.size())).empty()) {
                throw MakeError(2628, {}, {target.table, target.column, kept});
            }
            text = std::string(kept);
        }
        return Value(Padded(std::move(text), to));
    }
    if (to.IsBinary() && to.length > 0) {
        SqlType whole = to;
        whole.length = kMaxLength;
        const Value bytes = ToBinary(value, from, whole);
        if (bytes.Blob().size() > static_cast<std::size_t>(to.length) && !from.IsInteger()) {
            throw MakeError(2628, {}, {target.table, target.column, ""});
        }
    }
    return Convert(value, from, to);
}

}  // namespace vicenter::tsql::engine
