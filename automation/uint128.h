#pragma once

// Unsigned integers of 128 bits: the compiler's own where it has them (64-bit machines), else a class of two
// halves that counts alike, modulo 2^128. Value types; dividing by zero ends the process, as ever.

#include <bit>
#include <compare>
#include <concepts>
#include <cstdint>

namespace vicenter::automation {

class PortableUInt128 {
  public:
    constexpr PortableUInt128() = default;
    // Negative numbers wrap around, as with every unsigned type.
    template <std::integral T>
    // NOLINTNEXTLINE(google-explicit-constructor): every integer is one of these
    constexpr PortableUInt128(T value)
        : high_(std::signed_integral<T> && value < T{} ? ~std::uint64_t{0} : 0),
          low_(static_cast<std::uint64_t>(value)) {}

    template <std::integral T>
    explicit constexpr operator T() const {
        return static_cast<T>(low_);
    }
    explicit constexpr operator bool() const { return (high_ | low_) != 0; }

    friend constexpr bool operator==(const PortableUInt128&, const PortableUInt128&) = default;
    friend constexpr std::strong_ordering operator<=>(const PortableUInt128&,
                                                      const PortableUInt128&) = default;

    constexpr PortableUInt128& operator+=(const PortableUInt128& other) {
        const std::uint64_t sum = low_ + other.low_;
        high_ += other.high_ + (sum < low_ ? 1 : 0);
        low_ = sum;
        return *this;
    }
    constexpr PortableUInt128& operator-=(const PortableUInt128& other) {
        high_ -= other.high_ + (low_ < other.low_ ? 1 : 0);
        low_ -= other.low_;
        return *this;
    }
    constexpr PortableUInt128& operator*=(const PortableUInt128& other) {
        PortableUInt128 product = Product(low_, other.low_);
        product.high_ += low_ * other.high_ + high_ * other.low_;
        return *this = product;
    }
    constexpr PortableUInt128& operator/=(const PortableUInt128& other);
    constexpr PortableUInt128& operator%=(const PortableUInt128& other);
    constexpr PortableUInt128& operator|=(const PortableUInt128& other) {
        high_ |= other.high_;
        low_ |= other.low_;
        return *this;
    }
    constexpr PortableUInt128& operator&=(const PortableUInt128& other) {
        high_ &= other.high_;
        low_ &= other.low_;
        return *this;
    }
    // By 0 to 127 bits.
    constexpr PortableUInt128& operator<<=(int bits) {
        if (bits >= kHalf) {
            high_ = low_ << (bits - kHalf);
            low_ = 0;
        } else if (bits > 0) {
            high_ = high_ << bits | low_ >> (kHalf - bits);
            low_ <<= bits;
        }
        return *this;
    }
    constexpr PortableUInt128& operator>>=(int bits) {
        if (bits >= kHalf) {
            low_ = high_ >> (bits - kHalf);
            high_ = 0;
        } else if (bits > 0) {
            low_ = low_ >> bits | high_ << (kHalf - bits);
            high_ >>= bits;
        }
        return *this;
    }
    constexpr PortableUInt128& operator++() { return *this += 1; }

    friend constexpr PortableUInt128 operator+(PortableUInt128 a, const PortableUInt128& b) { return a += b; }
    friend constexpr PortableUInt128 operator-(PortableUInt128 a, const PortableUInt128& b) { return a -= b; }
    friend constexpr PortableUInt128 operator*(PortableUInt128 a, const PortableUInt128& b) { return a *= b; }
    friend constexpr PortableUInt128 operator/(PortableUInt128 a, const PortableUInt128& b) { return a /= b; }
    friend constexpr PortableUInt128 operator%(PortableUInt128 a, const PortableUInt128& b) { return a %= b; }
    friend constexpr PortableUInt128 operator|(PortableUInt128 a, const PortableUInt128& b) { return a |= b; }
    friend constexpr PortableUInt128 operator&(PortableUInt128 a, const PortableUInt128& b) { return a &= b; }
    friend constexpr PortableUInt128 operator<<(PortableUInt128 a, int bits) { return a <<= bits; }
    friend constexpr PortableUInt128 operator>>(PortableUInt128 a, int bits) { return a >>= bits; }

  private:
    static constexpr int kHalf = 64;
    static constexpr int kQuarter = 32;
    static constexpr std::uint64_t kQuarterMask = 0xFFFFFFFFU;

    struct Division;

    constexpr int Width() const {
        return high_ != 0 ? kHalf + static_cast<int>(std::bit_width(high_))
                          : static_cast<int>(std::bit_width(low_));
    }

    static constexpr PortableUInt128 Product(std::uint64_t a, std::uint64_t b) {
        const std::uint64_t a0 = a & kQuarterMask;
        const std::uint64_t a1 = a >> kQuarter;
        const std::uint64_t b0 = b & kQuarterMask;
        const std::uint64_t b1 = b >> kQuarter;
        const std::uint64_t lowest = a0 * b0;
        const std::uint64_t middle = a1 * b0 + (lowest >> kQuarter);
        const std::uint64_t other = a0 * b1 + (middle & kQuarterMask);
        PortableUInt128 product;
        product.high_ = a1 * b1 + (middle >> kQuarter) + (other >> kQuarter);
        product.low_ = other << kQuarter | (lowest & kQuarterMask);
        return product;
    }

    static constexpr Division Divided(const PortableUInt128& a, const PortableUInt128& b);
    static constexpr Division DividedByQuarter(const PortableUInt128& a, std::uint64_t divisor);

    std::uint64_t high_ = 0;  // first: the comparison goes by the order of the members
    std::uint64_t low_ = 0;
};

struct PortableUInt128::Division {
    PortableUInt128 quotient;
    PortableUInt128 rest;
};

// By a number below 2^32: as on paper, a quarter at a time.
constexpr PortableUInt128::Division PortableUInt128::DividedByQuarter(const PortableUInt128& a,
                                                                      std::uint64_t divisor) {
    const std::uint64_t quarters[] = {a.high_ >> kQuarter, a.high_ & kQuarterMask, a.low_ >> kQuarter,
                                      a.low_ & kQuarterMask};
    Division result;
    std::uint64_t rest = 0;
    for (const std::uint64_t quarter : quarters) {
        const std::uint64_t part = rest << kQuarter | quarter;
        result.quotient = (result.quotient << kQuarter) | part / divisor;
        rest = part % divisor;
    }
    result.rest = rest;
    return result;
}

constexpr PortableUInt128::Division PortableUInt128::Divided(const PortableUInt128& a,
                                                             const PortableUInt128& b) {
    if (a.high_ == 0 && b.high_ == 0) return {a.low_ / b.low_, a.low_ % b.low_};
    if (b.high_ == 0 && b.low_ <= kQuarterMask) return DividedByQuarter(a, b.low_);
    Division result{0, a};
    if (a < b) return result;
    int shift = a.Width() - b.Width();
    for (PortableUInt128 part = b << shift; shift >= 0; --shift, part >>= 1) {
        result.quotient <<= 1;
        if (result.rest < part) continue;
        result.rest -= part;
        result.quotient |= 1;
    }
    return result;
}

constexpr PortableUInt128& PortableUInt128::operator/=(const PortableUInt128& other) {
    return *this = Divided(*this, other).quotient;
}

constexpr PortableUInt128& PortableUInt128::operator%=(const PortableUInt128& other) {
    return *this = Divided(*this, other).rest;
}

// The macro is for tests that run with the class where the compiler has a type of its own.
#if defined(__SIZEOF_INT128__) && !defined(VICENTER_PORTABLE_UINT128)
__extension__ typedef unsigned __int128 UInt128;
#else
using UInt128 = PortableUInt128;
#endif

}  // namespace vicenter::automation
