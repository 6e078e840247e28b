#include "automation/uint128.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vicenter::automation {
namespace {

constexpr std::uint64_t kMax64 = std::numeric_limits<std::uint64_t>::max();

// Both of them run through every test, wherever the compiler has a type of its own.
template <class Number>
class UnsignedOf128Bits : public testing::Test {
  protected:
    static Number Of(std::uint64_t high, std::uint64_t low) { return (Number(high) << 64) | Number(low); }

    static std::string Digits(Number number) {
        std::string digits;
        do {
            digits += static_cast<char>('0' + static_cast<int>(number % 10));
            number /= 10;
        } while (number != 0);
        std::reverse(digits.begin(), digits.end());
        return digits;
    }

    static std::vector<Number> Edges() {
        std::vector<Number> edges;
        for (const std::uint64_t half :
             {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{9}, std::uint64_t{10},
              std::uint64_t{0x7FFFFFFF}, std::uint64_t{0x80000000}, std::uint64_t{0xFFFFFFFF},
              std::uint64_t{0x100000000}, std::uint64_t{10'000'000'000'000'000'000U}, kMax64 >> 1, kMax64 - 1,
              kMax64}) {
            for (const std::uint64_t high : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{0xFFFFFFFF},
                                             std::uint64_t{0x4B3B4CA85A86C47A}, kMax64 >> 1, kMax64}) {
                edges.push_back(Of(high, half));
                edges.push_back(Of(half, high));
            }
        }
        return edges;
    }
};

#if defined(__SIZEOF_INT128__) && !defined(VICENTER_PORTABLE_UINT128)
using Implementations = testing::Types<UInt128, PortableUInt128>;
#else
using Implementations = testing::Types<PortableUInt128>;
#endif
TYPED_TEST_SUITE(UnsignedOf128Bits, Implementations);

TYPED_TEST(UnsignedOf128Bits, ReadsAsItsDigits) {
    EXPECT_EQ(this->Digits(0), "0");
    EXPECT_EQ(this->Digits(this->Of(0, kMax64)), "18446744073709551615");
    EXPECT_EQ(this->Digits(this->Of(1, 0)), "18446744073709551616");
    EXPECT_EQ(this->Digits(this->Of(kMax64, kMax64)), "340282366920938463463374607431768211455");
    TypeParam power = 1;
    for (int i = 0; i < 38; ++i)
        power *= 10;
    EXPECT_EQ(this->Digits(power), "1" + std::string(38, '0'));
    EXPECT_EQ(this->Digits(power - 1), std::string(38, '9'));
}

TYPED_TEST(UnsignedOf128Bits, WrapsAroundAtBothEnds) {
    const TypeParam top = this->Of(kMax64, kMax64);
    EXPECT_TRUE(top + 1 == 0);
    EXPECT_TRUE(TypeParam(0) - 1 == top);
    EXPECT_TRUE(TypeParam(-1) == top);
    EXPECT_TRUE(top * top == 1);
    TypeParam next = this->Of(0, kMax64);
    EXPECT_TRUE(++next == this->Of(1, 0));
}

TYPED_TEST(UnsignedOf128Bits, WhatIsDividedComesBackByMultiplying) {
    for (const TypeParam& a : this->Edges()) {
        for (const TypeParam& b : this->Edges()) {
            EXPECT_TRUE((a + b) - b == a);
            EXPECT_TRUE((a - b) + b == a);
            EXPECT_TRUE(a * b == b * a);
            if (b == 0) continue;
            const TypeParam quotient = a / b;
            const TypeParam rest = a % b;
            EXPECT_TRUE(rest < b) << this->Digits(a) << " % " << this->Digits(b);
            EXPECT_TRUE(quotient * b + rest == a) << this->Digits(a) << " / " << this->Digits(b);
            EXPECT_TRUE(quotient <= a);
        }
    }
}

TYPED_TEST(UnsignedOf128Bits, ShiftsAcrossTheMiddle) {
    const TypeParam number = this->Of(0x0123456789ABCDEF, 0xFEDCBA9876543210);
    TypeParam power = 1;
    for (int bits = 0; bits < 128; ++bits) {
        EXPECT_TRUE(number << bits == number * power) << bits;
        EXPECT_TRUE(number >> bits == number / power) << bits;
        power *= 2;
    }
}

TYPED_TEST(UnsignedOf128Bits, ComparesByTheUpperHalfFirst) {
    EXPECT_TRUE(this->Of(1, 0) > this->Of(0, kMax64));
    EXPECT_TRUE(this->Of(1, 0) != this->Of(0, 1));
    EXPECT_TRUE(this->Of(1, 2) >= this->Of(1, 2));
    EXPECT_TRUE(this->Of(kMax64 >> 1, 1) < this->Of(kMax64, 0));
    EXPECT_TRUE(static_cast<bool>(this->Of(1, 0)));
}

TYPED_TEST(UnsignedOf128Bits, GivesItsLowerPartAsASmallerNumber) {
    const TypeParam number = this->Of(5, 0xFEDCBA9876543210);
    EXPECT_EQ(static_cast<std::uint64_t>(number), 0xFEDCBA9876543210U);
    EXPECT_EQ(static_cast<std::uint32_t>(number), 0x76543210U);
    EXPECT_EQ(static_cast<int>(number & 0xFF), 0x10);
    EXPECT_EQ(static_cast<std::int64_t>(number >> 64), 5);
}

#if defined(__SIZEOF_INT128__) && !defined(VICENTER_PORTABLE_UINT128)
TEST(UnsignedOf128BitsTest, BothCountAlike) {
    std::uint64_t seed = 20240229;
    const auto next = [&seed] {
        seed ^= seed << 13;
        seed ^= seed >> 7;
        seed ^= seed << 17;
        return seed;
    };
    const auto same = [](UInt128 own, PortableUInt128 portable) {
        return static_cast<std::uint64_t>(own >> 64) == static_cast<std::uint64_t>(portable >> 64) &&
               static_cast<std::uint64_t>(own) == static_cast<std::uint64_t>(portable);
    };
    for (int i = 0; i < 20'000; ++i) {
        // Of every width.
        const int narrow = static_cast<int>(next() % 128);
        const std::uint64_t high = next();
        const std::uint64_t low = next();
        const std::uint64_t otherHigh = next();
        const std::uint64_t otherLow = next() | 1;
        const UInt128 a = UInt128(high) << 64 | low;
        const UInt128 b = (UInt128(otherHigh) << 64 | otherLow) >> narrow | 1;
        const PortableUInt128 x = PortableUInt128(high) << 64 | low;
        const PortableUInt128 y = (PortableUInt128(otherHigh) << 64 | otherLow) >> narrow | 1;
        ASSERT_TRUE(same(a, x) && same(b, y));
        ASSERT_TRUE(same(a + b, x + y));
        ASSERT_TRUE(same(a - b, x - y));
        ASSERT_TRUE(same(a * b, x * y));
        ASSERT_TRUE(same(a / b, x / y));
        ASSERT_TRUE(same(a % b, x % y));
        ASSERT_EQ(a < b, x < y);
    }
}
#endif

}  // namespace
}  // namespace vicenter::automation
