#include "tsql/types/convert_number.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

#include "automation/variant.h"
#include "text/blanks.h"
#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"
#include "tsql/types/convert.h"
#include "tsql/types/date_part.h"

namespace vicenter::tsql::engine {

namespace {

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

}  // namespace

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
            // The last bytes, as many as the type has.
            switch (to.kind) {
                case TypeKind::kTinyInt:
                    return Value(std::int64_t{static_cast<std::uint8_t>(number)});
                case TypeKind::kSmallInt:
                    return Value(std::int64_t{static_cast<std::int16_t>(number)});
                case TypeKind::kInt:
                    return Value(std::int64_t{static_cast<std::int32_t>(number)});
                default:
                    return FitInteger(static_cast<std::int64_t>(number), to);
            }
        }
    }
    return {};
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
            if (!std::isfinite(number)) throw MakeError(8115, {}, {from.Name(), to.Name()});
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

bool FitsDecimal(const Decimal& scaled, const SqlType& type) {
    if (!type.IsMoney())
        return scaled.IsZero() || scaled.Precision() - scaled.Scale() <= type.precision - type.scale;
    // Ten-thousandths in an integer of eight or four bytes, which reaches one further below zero.
    const std::uint64_t top = std::uint64_t{1} << (type.kind == TypeKind::kMoney ? 63 : 31);
    return scaled.Magnitude() <= (scaled.IsNegative() ? top : top - 1);
}

}  // namespace vicenter::tsql::engine
