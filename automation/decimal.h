#pragma once

// Exact decimal numbers: a sign, up to 38 significant digits and a scale of 0 to 38 digits after the point.
// Serves both the automation Decimal and the decimal columns of an account set. A value type without
// ownership.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "automation/uint128.h"

namespace vicenter::automation {

class Decimal {
  public:
    static constexpr int kMaxDigits = 38;

    Decimal() = default;
    Decimal(std::int64_t value);  // NOLINT(google-explicit-constructor): every integer is a decimal
    // magnitude / 10^scale; throws Error 6 (overflow) past 38 digits.
    static Decimal FromParts(bool negative, UInt128 magnitude, int scale);
    // Reads [blanks][sign]digits[.digits][blanks], the point alone missing or leading allowed (".5", "5.").
    // No exponent, no separators. Nothing for any other text or for more than 38 digits.
    static std::optional<Decimal> Parse(std::string_view text);
    // The shortest decimal that reads back as the same double; throws Error 6 for infinities, NaN and values
    // past 38 digits.
    static Decimal FromDouble(double value);

    bool IsNegative() const { return negative_; }
    bool IsZero() const { return magnitude_ == 0; }
    UInt128 Magnitude() const { return magnitude_; }
    int Scale() const { return scale_; }
    // Digits before and after the point without leading zeros, at least 1.
    int Precision() const;

    double ToDouble() const;
    // Rounded half away from zero; nothing when it does not fit.
    std::optional<std::int64_t> ToInt64() const;
    // Truncated toward zero; nothing when it does not fit.
    std::optional<std::int64_t> TruncateToInt64() const;
    // All digits of the scale: "12.5000". '.' always, no separators.
    std::string ToText() const;
    // Without trailing zeros of the fraction: "12.5".
    std::string ToShortText() const;

    // Same value with the given scale, rounded half away from zero; throws Error 6 when it needs over 38
    // digits.
    Decimal Rescaled(int scale) const;
    // Same value with the given scale, surplus digits cut off.
    Decimal Truncated(int scale) const;
    // Without trailing zeros of the fraction.
    Decimal Normalized() const;
    Decimal Negated() const;

    // Negative, zero or positive as a < b, a == b, a > b.
    static int Compare(const Decimal& a, const Decimal& b);
    // Exact; throw Error 6 when the result needs over 38 digits. Multiply drops digits of the fraction
    // (rounding) before it gives up.
    static Decimal Add(const Decimal& a, const Decimal& b);
    static Decimal Subtract(const Decimal& a, const Decimal& b);
    static Decimal Multiply(const Decimal& a, const Decimal& b);
    // Truncated to the given scale; throws Error 11 (division by zero).
    static Decimal Divide(const Decimal& a, const Decimal& b, int scale);
    // Remainder with the sign of the dividend; throws Error 11.
    static Decimal Remainder(const Decimal& a, const Decimal& b);

    friend bool operator==(const Decimal& a, const Decimal& b) { return Compare(a, b) == 0; }

  private:
    UInt128 magnitude_ = 0;
    std::int8_t scale_ = 0;
    bool negative_ = false;
};

}  // namespace vicenter::automation
