#include "automation/decimal.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "automation/error.h"
#include "text/blanks.h"

namespace vicenter::automation {

namespace {

constexpr int kPowers = 39;

// 10^0 to 10^38: 10^38 still fits 128 bits.
const UInt128* PowersOfTen() {
    static const auto table = [] {
        struct Table {
            UInt128 value[kPowers];
        } result;
        result.value[0] = 1;
        for (int i = 1; i < kPowers; ++i)
            result.value[i] = result.value[i - 1] * 10;
        return result;
    }();
    return table.value;
}

UInt128 PowerOfTen(int exponent) {
    return PowersOfTen()[exponent];
}

bool TooLarge(UInt128 magnitude) {
    return magnitude >= PowerOfTen(Decimal::kMaxDigits);
}

[[noreturn]] void Overflow() {
    throw Error(error_number::kOverflow);
}

int DigitCount(UInt128 magnitude) {
    int digits = 1;
    while (digits < kPowers && magnitude >= PowerOfTen(digits))
        ++digits;
    return digits;
}

// magnitude * 10^digits, or nothing past 38 digits.
std::optional<UInt128> ScaledUp(UInt128 magnitude, int digits) {
    if (magnitude == 0) return magnitude;
    if (digits >= kPowers || magnitude > (PowerOfTen(Decimal::kMaxDigits) - 1) / PowerOfTen(digits))
        return std::nullopt;
    return magnitude * PowerOfTen(digits);
}

UInt128 DividedRounding(UInt128 magnitude, int digits) {
    if (digits >= kPowers) return 0;
    const UInt128 divisor = PowerOfTen(digits);
    const UInt128 quotient = magnitude / divisor;
    const UInt128 rest = magnitude % divisor;
    return rest >= divisor - rest ? quotient + 1 : quotient;
}

// A 256-bit product, most significant limb last, of 32-bit limbs in 64-bit cells.
struct Wide {
    std::uint64_t limb[8] = {};

    static Wide Product(UInt128 a, UInt128 b) {
        Wide result;
        for (int i = 0; i < 4; ++i) {
            std::uint64_t carry = 0;
            const auto x = static_cast<std::uint32_t>(a >> (32 * i));
            for (int j = 0; j < 4; ++j) {
                const auto y = static_cast<std::uint32_t>(b >> (32 * j));
                const std::uint64_t sum = result.limb[i + j] + static_cast<std::uint64_t>(x) * y + carry;
                result.limb[i + j] = sum & 0xffffffffU;
                carry = sum >> 32;
            }
            result.limb[i + 4] += carry;
        }
        return result;
    }
    // Divides by a 32-bit number in place and returns the remainder.
    std::uint32_t DivideBy(std::uint32_t divisor) {
        std::uint64_t rest = 0;
        for (int i = 7; i >= 0; --i) {
            const std::uint64_t part = (rest << 32) | limb[i];
            limb[i] = part / divisor;
            rest = part % divisor;
        }
        return static_cast<std::uint32_t>(rest);
    }
    bool FitsDecimal() const {
        if ((limb[4] | limb[5] | limb[6] | limb[7]) != 0) return false;
        return !TooLarge(Low());
    }
    UInt128 Low() const {
        UInt128 result = 0;
        for (int i = 3; i >= 0; --i)
            result = (result << 32) | limb[i];
        return result;
    }
};

}  // namespace

Decimal::Decimal(std::int64_t value)
    : magnitude_(value < 0 ? ~static_cast<std::uint64_t>(value) + 1 : static_cast<std::uint64_t>(value)),
      negative_(value < 0) {}

Decimal Decimal::FromParts(bool negative, UInt128 magnitude, int scale) {
    if (TooLarge(magnitude) || scale < 0 || scale > kMaxDigits) Overflow();
    Decimal result;
    result.magnitude_ = magnitude;
    result.scale_ = static_cast<std::int8_t>(scale);
    result.negative_ = negative && magnitude != 0;
    return result;
}

std::optional<Decimal> Decimal::Parse(std::string_view text) {
    text = text::Trimmed(text, text::kSpace);
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    UInt128 magnitude = 0;
    // The first digits, which are all of most numbers, need no 128 bits.
    constexpr int kNarrowDigits = 18;
    std::uint64_t narrow = 0;
    int digits = 0;
    int scale = 0;
    bool point = false;
    for (const char c : text) {
        if (c == '.') {
            if (point) return std::nullopt;
            point = true;
        } else if (c >= '0' && c <= '9') {
            if (digits++ < kNarrowDigits) {
                narrow = narrow * 10 + static_cast<unsigned>(c - '0');
                scale += point ? 1 : 0;
                continue;
            }
            if (digits == kNarrowDigits + 1) magnitude = narrow;
            if (magnitude > (PowerOfTen(kMaxDigits) - 1) / 10) return std::nullopt;
            magnitude = magnitude * 10 + static_cast<unsigned>(c - '0');
            if (TooLarge(magnitude)) return std::nullopt;
            if (point && ++scale > kMaxDigits) return std::nullopt;
        } else {
            return std::nullopt;
        }
    }
    if (digits == 0) return std::nullopt;
    return FromParts(negative, digits > kNarrowDigits ? magnitude : UInt128(narrow), scale);
}

Decimal Decimal::FromDouble(double value) {
    if (!std::isfinite(value)) Overflow();
    char buffer[512];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
    if (error != std::errc()) Overflow();
    std::string_view text(buffer, static_cast<std::size_t>(end - buffer));
    if (const auto parsed = Parse(text)) return *parsed;
    // Tiny values have more digits behind the point than a decimal holds: those are rounded away.
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos) Overflow();
    const std::size_t whole = point - (text.front() == '-' ? 1 : 0);
    const int room = kMaxDigits - static_cast<int>(std::max<std::size_t>(whole, 1));
    if (room < 0) Overflow();
    const auto [end2, error2] =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, room);
    if (error2 != std::errc()) Overflow();
    const auto rounded = Parse(std::string_view(buffer, static_cast<std::size_t>(end2 - buffer)));
    if (!rounded) Overflow();
    return rounded->Normalized();
}

int Decimal::Precision() const {
    return std::max(DigitCount(magnitude_), static_cast<int>(scale_));
}

double Decimal::ToDouble() const {
    const std::string text = ToText();
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::optional<std::int64_t> Decimal::ToInt64() const {
    return Rescaled(0).TruncateToInt64();
}

std::optional<std::int64_t> Decimal::TruncateToInt64() const {
    const UInt128 whole = magnitude_ / PowerOfTen(scale_);
    constexpr auto kLimit = static_cast<UInt128>(std::numeric_limits<std::int64_t>::max());
    if (negative_) {
        if (whole > kLimit + 1) return std::nullopt;
        return static_cast<std::int64_t>(~static_cast<std::uint64_t>(whole) + 1);
    }
    if (whole > kLimit) return std::nullopt;
    return static_cast<std::int64_t>(whole);
}

std::string Decimal::ToText() const {
    char buffer[kMaxDigits + 4];
    char* cursor = buffer + sizeof buffer;
    UInt128 rest = magnitude_;
    int digits = 0;
    do {
        if (digits == scale_ && scale_ > 0) *--cursor = '.';
        *--cursor = static_cast<char>('0' + static_cast<int>(rest % 10));
        rest /= 10;
        ++digits;
    } while (rest != 0 || digits <= scale_);
    if (negative_) *--cursor = '-';
    return std::string(cursor, buffer + sizeof buffer);
}

std::string Decimal::ToShortText() const {
    return Normalized().ToText();
}

Decimal Decimal::Rescaled(int scale) const {
    if (scale < 0 || scale > kMaxDigits) Overflow();
    if (scale >= scale_) {
        const auto scaled = ScaledUp(magnitude_, scale - scale_);
        if (!scaled) Overflow();
        return FromParts(negative_, *scaled, scale);
    }
    return FromParts(negative_, DividedRounding(magnitude_, scale_ - scale), scale);
}

Decimal Decimal::Truncated(int scale) const {
    if (scale >= scale_) return Rescaled(scale);
    return FromParts(negative_, magnitude_ / PowerOfTen(scale_ - scale), scale);
}

Decimal Decimal::Normalized() const {
    Decimal result = *this;
    while (result.scale_ > 0 && result.magnitude_ % 10 == 0) {
        result.magnitude_ /= 10;
        --result.scale_;
    }
    return result;
}

Decimal Decimal::Negated() const {
    Decimal result = *this;
    result.negative_ = !negative_ && magnitude_ != 0;
    return result;
}

int Decimal::Compare(const Decimal& a, const Decimal& b) {
    if (a.negative_ != b.negative_) return a.negative_ ? -1 : 1;
    const int sign = a.negative_ ? -1 : 1;
    if (a.scale_ == b.scale_) {
        return a.magnitude_ == b.magnitude_ ? 0 : (a.magnitude_ < b.magnitude_ ? -sign : sign);
    }
    // Whole parts first, then the fractions at the larger scale: both always fit 128 bits.
    const UInt128 wholeA = a.magnitude_ / PowerOfTen(a.scale_);
    const UInt128 wholeB = b.magnitude_ / PowerOfTen(b.scale_);
    if (wholeA != wholeB) return wholeA < wholeB ? -sign : sign;
    const int scale = std::max(a.Scale(), b.Scale());
    const UInt128 restA = (a.magnitude_ % PowerOfTen(a.scale_)) * PowerOfTen(scale - a.scale_);
    const UInt128 restB = (b.magnitude_ % PowerOfTen(b.scale_)) * PowerOfTen(scale - b.scale_);
    return restA == restB ? 0 : (restA < restB ? -sign : sign);
}

Decimal Decimal::Add(const Decimal& a, const Decimal& b) {
    const int scale = std::max(a.Scale(), b.Scale());
    const auto x = ScaledUp(a.magnitude_, scale - a.scale_);
    const auto y = ScaledUp(b.magnitude_, scale - b.scale_);
    if (!x || !y) {
        // One operand has no room for the other's fraction; it may have once trailing zeros are gone.
        const Decimal shortA = a.Normalized();
        const Decimal shortB = b.Normalized();
        if (shortA.scale_ == a.scale_ && shortB.scale_ == b.scale_) Overflow();
        return Add(shortA, shortB);
    }
    if (a.negative_ == b.negative_) return FromParts(a.negative_, *x + *y, scale);
    if (*x >= *y) return FromParts(a.negative_, *x - *y, scale);
    return FromParts(b.negative_, *y - *x, scale);
}

Decimal Decimal::Subtract(const Decimal& a, const Decimal& b) {
    return Add(a, b.Negated());
}

Decimal Decimal::Multiply(const Decimal& a, const Decimal& b) {
    Wide product = Wide::Product(a.magnitude_, b.magnitude_);
    int scale = a.scale_ + b.scale_;
    std::uint32_t lastDropped = 0;
    while (scale > kMaxDigits || !product.FitsDecimal()) {
        if (scale == 0) Overflow();
        lastDropped = product.DivideBy(10);
        --scale;
    }
    UInt128 magnitude = product.Low();
    if (lastDropped >= 5) ++magnitude;
    return FromParts(a.negative_ != b.negative_, magnitude, scale);
}

Decimal Decimal::Divide(const Decimal& a, const Decimal& b, int scale) {
    if (b.IsZero()) throw Error(error_number::kDivisionByZero);
    if (scale < 0 || scale > kMaxDigits) Overflow();
    // Long division digit by digit: the quotient of the magnitudes, then as many digits of the fraction as
    // the scales call for.
    UInt128 quotient = a.magnitude_ / b.magnitude_;
    UInt128 rest = a.magnitude_ % b.magnitude_;
    int have = a.scale_ - b.scale_;
    while (have < scale) {
        // rest < b <= 10^38 - 1, so that ten times the rest may pass 128 bits: take it in ten additions.
        unsigned digit = 0;
        UInt128 sum = 0;
        for (int i = 0; i < 10; ++i) {
            if (sum >= b.magnitude_ - rest) {
                sum -= b.magnitude_ - rest;
                ++digit;
            } else {
                sum += rest;
            }
        }
        rest = sum;
        if (quotient > (PowerOfTen(kMaxDigits) - 1 - digit) / 10) Overflow();
        quotient = quotient * 10 + digit;
        ++have;
    }
    while (have > scale) {
        quotient /= 10;
        --have;
    }
    return FromParts(a.negative_ != b.negative_, quotient, scale);
}

Decimal Decimal::Remainder(const Decimal& a, const Decimal& b) {
    if (b.IsZero()) throw Error(error_number::kDivisionByZero);
    const int scale = std::max(a.Scale(), b.Scale());
    const auto x = ScaledUp(a.magnitude_, scale - a.scale_);
    const auto y = ScaledUp(b.magnitude_, scale - b.scale_);
    if (!x || !y) Overflow();
    return FromParts(a.negative_, *x % *y, scale);
}

}  // namespace vicenter::automation
