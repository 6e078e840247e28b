#include "automation/decimal.h"

#include <limits>

#include <gtest/gtest.h>

#include "automation/error.h"

namespace vicenter::automation {
namespace {

Decimal D(std::string_view text) {
    const auto value = Decimal::Parse(text);
    EXPECT_TRUE(value.has_value()) << text;
    return value.value_or(Decimal());
}

TEST(Decimal, KeepsEveryDigitTyped) {
    for (const char* text :
         {"0", "12.50", "-0.0000000001", "999999999.0123456789", "1234567890123456789012345678901234567.8"}) {
        EXPECT_EQ(D(text).ToText(), text);
    }
}

TEST(Decimal, ReadsMissingWholeOrFraction) {
    EXPECT_EQ(D(".5").ToText(), "0.5");
    EXPECT_EQ(D("5.").ToText(), "5");
    EXPECT_EQ(D(" +7 ").ToText(), "7");
}

TEST(Decimal, RefusesWhatIsNoPlainNumber) {
    for (const char* text : {"", " ", ".", "-", "1e3", "1,000", "0x10", "$5", "1.2.3", "1 2", "--1"}) {
        EXPECT_FALSE(Decimal::Parse(text).has_value()) << text;
    }
    EXPECT_FALSE(Decimal::Parse(std::string(39, '9')).has_value());
    EXPECT_TRUE(Decimal::Parse(std::string(38, '9')).has_value());
}

TEST(DecimalParse, KeepsEveryDigitWhereverThePointStands) {
    const std::string digits = "98765432109876543210987654321098765432";
    for (std::size_t length = 1; length <= digits.size(); ++length) {
        const std::string whole = digits.substr(0, length);
        EXPECT_EQ(Decimal::Parse(whole)->ToText(), whole);
        EXPECT_EQ(Decimal::Parse("-000" + whole)->ToText(), "-" + whole);
        for (std::size_t point = 1; point < length; ++point) {
            const std::string text = whole.substr(0, point) + "." + whole.substr(point);
            const auto value = Decimal::Parse(text);
            ASSERT_TRUE(value.has_value()) << text;
            EXPECT_EQ(value->ToText(), text);
            EXPECT_EQ(value->Scale(), static_cast<int>(length - point));
        }
    }
    EXPECT_EQ(Decimal::Parse(std::string(60, '0'))->ToText(), "0");
}

TEST(Decimal, NegativeZeroIsZero) {
    EXPECT_EQ(D("-0.00").ToText(), "0.00");
    EXPECT_FALSE(D("-0").IsNegative());
    EXPECT_FALSE(D("0").Negated().IsNegative());
}

TEST(Decimal, ShortTextDropsTrailingZerosOfTheFractionOnly) {
    EXPECT_EQ(D("12.5000").ToShortText(), "12.5");
    EXPECT_EQ(D("1200").ToShortText(), "1200");
    EXPECT_EQ(D("0.000").ToShortText(), "0");
}

TEST(Decimal, RescaleRoundsHalfAwayFromZero) {
    EXPECT_EQ(D("1.25").Rescaled(1).ToText(), "1.3");
    EXPECT_EQ(D("-1.25").Rescaled(1).ToText(), "-1.3");
    EXPECT_EQ(D("1.24").Rescaled(1).ToText(), "1.2");
    EXPECT_EQ(D("1").Rescaled(4).ToText(), "1.0000");
    EXPECT_EQ(D("0.6").Rescaled(0).ToText(), "1");
    EXPECT_THROW(D(std::string(38, '9')).Rescaled(1), Error);
}

TEST(Decimal, TruncateCutsDigits) {
    EXPECT_EQ(D("1.29").Truncated(1).ToText(), "1.2");
    EXPECT_EQ(D("-1.29").Truncated(0).ToText(), "-1");
}

TEST(Decimal, ComparesAcrossScales) {
    EXPECT_EQ(D("1.50"), D("1.5"));
    EXPECT_LT(Decimal::Compare(D("-2"), D("1")), 0);
    EXPECT_LT(Decimal::Compare(D("-2.01"), D("-2")), 0);
    EXPECT_GT(Decimal::Compare(D("99999999999999999999999999999999999999"),
                               D("0.00000000000000000000000000000000000001")),
              0);
    EXPECT_LT(Decimal::Compare(D("0.1"), D("0.11")), 0);
}

TEST(Decimal, AddsAndSubtractsExactly) {
    EXPECT_EQ(Decimal::Add(D("0.1"), D("0.2")).ToText(), "0.3");
    EXPECT_EQ(Decimal::Subtract(D("1"), D("0.0001")).ToText(), "0.9999");
    EXPECT_EQ(Decimal::Add(D("-5"), D("3.5")).ToText(), "-1.5");
    EXPECT_EQ(Decimal::Add(D("-3"), D("3")).ToText(), "0");
    EXPECT_THROW(Decimal::Add(D(std::string(38, '9')), D("1")), Error);
}

TEST(Decimal, MultipliesWithA256BitProduct) {
    EXPECT_EQ(Decimal::Multiply(D("1.5"), D("-2.25")).ToText(), "-3.375");
    EXPECT_EQ(Decimal::Multiply(D("12345678901234567890"), D("12345678901234567.89")).ToText(),
              "152415787532388367501905199875019052.10");
    // The fraction is rounded to what 38 digits leave room for.
    EXPECT_EQ(Decimal::Multiply(D("0.33333333333333333333"), D("0.33333333333333333333")).Scale(), 38);
    EXPECT_THROW(Decimal::Multiply(D("1" + std::string(30, '0')), D("1" + std::string(30, '0'))), Error);
}

TEST(Decimal, DividesToTheScaleAskedFor) {
    EXPECT_EQ(Decimal::Divide(D("1"), D("3"), 6).ToText(), "0.333333");
    EXPECT_EQ(Decimal::Divide(D("-7"), D("2"), 0).ToText(), "-3");
    EXPECT_EQ(Decimal::Divide(D("2"), D("0.0002"), 0).ToText(), "10000");
    EXPECT_EQ(Decimal::Divide(D("9" + std::string(37, '9')), D("9" + std::string(37, '8')), 0).ToText(), "1");
    EXPECT_THROW(Decimal::Divide(D("1"), D("0"), 2), Error);
    EXPECT_EQ(Decimal::Remainder(D("-7.5"), D("2")).ToText(), "-1.5");
}

TEST(Decimal, TakesDoublesByTheirShortestText) {
    EXPECT_EQ(Decimal::FromDouble(0.1).ToText(), "0.1");
    EXPECT_EQ(Decimal::FromDouble(-1234.5678).ToText(), "-1234.5678");
    EXPECT_EQ(Decimal::FromDouble(1e-30).ToText(), "0.000000000000000000000000000001");
    EXPECT_EQ(Decimal::FromDouble(1e-300).ToText(), "0");
    EXPECT_THROW(Decimal::FromDouble(1e39), Error);
    EXPECT_THROW(Decimal::FromDouble(std::numeric_limits<double>::infinity()), Error);
}

TEST(Decimal, IntegersComeBackWhole) {
    EXPECT_EQ(Decimal(std::numeric_limits<std::int64_t>::min()).ToText(), "-9223372036854775808");
    EXPECT_EQ(Decimal(std::numeric_limits<std::int64_t>::min()).ToInt64(),
              std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(D("2.5").ToInt64(), 3);
    EXPECT_EQ(D("2.9").TruncateToInt64(), 2);
    EXPECT_FALSE(D("9223372036854775808").ToInt64().has_value());
}

TEST(Decimal, PrecisionCountsDigits) {
    EXPECT_EQ(D("0").Precision(), 1);
    EXPECT_EQ(D("0.05").Precision(), 2);
    EXPECT_EQ(D("123.45").Precision(), 5);
}

}  // namespace
}  // namespace vicenter::automation
