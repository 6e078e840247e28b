#include "exchange/cell_reading.h"

#include <gtest/gtest.h>

namespace vicenter::exchange {
namespace {

using automation::Variant;

TEST(CellAsTypedText, IsWhatOneWouldType) {
    EXPECT_EQ(CellAsTyped(Variant()), "");
    EXPECT_EQ(CellAsTyped(Variant::Null()), "");
    EXPECT_EQ(CellAsTyped(1001.0), "1001");
    EXPECT_EQ(CellAsTyped(1001.5), "1001.5");
    EXPECT_EQ(CellAsTyped(1e20), "100000000000000000000");
    EXPECT_EQ(CellAsTyped("1001.10"), "1001.10");
    EXPECT_EQ(CellAsTyped("  a b "), "a b");
    EXPECT_EQ(CellAsTyped(true), "TRUE");
    EXPECT_EQ(CellAsTyped(*automation::DateTime::Parse("2024-01-02")), "2024-01-02");
    EXPECT_EQ(CellAsTyped(*automation::DateTime::Parse("2024-01-02 03:04:05")), "2024-01-02 03:04:05");
    EXPECT_EQ(CellAsTyped(Variant(Variant::ErrorValue{static_cast<std::int32_t>(0x800A07FA)})), "#N/A");
    EXPECT_EQ(CellAsTyped(Variant(Variant::ErrorValue{2007})), "#DIV/0!");
    EXPECT_EQ(CellAsTyped(Variant(Variant::ErrorValue{1})), "#VALUE!");
}

TEST(TypedNumber, MayHaveSeparatorsAndFullWidthDigits) {
    EXPECT_EQ(ReadTypedNumber("1,234.50"), 1234.5);
    EXPECT_EQ(ReadTypedNumber(" -5 "), -5);
    EXPECT_EQ(ReadTypedNumber("１２．５"), 12.5);
    EXPECT_EQ(ReadTypedNumber("1e3"), 1000);
    EXPECT_EQ(ReadTypedNumber("￥1,234.50"), 1234.5);
    EXPECT_EQ(ReadTypedNumber("12元"), 12);
    EXPECT_EQ(ReadTypedNumber("(5.00)"), -5);
    EXPECT_EQ(ReadTypedNumber("5-"), -5);
    for (const char* text :
         {"", "abc", ",1", "1.5,0", "-,1", "2024-01-02", "#N/A", "TRUE", "1 2", "2,5", "1,23", "1e999"}) {
        EXPECT_FALSE(ReadTypedNumber(text).has_value()) << text;
    }
}

TEST(CanonicalNumberText, HasNoExponentAsFarAsDigitsSuffice) {
    EXPECT_EQ(CanonicalNumber(0), "0");
    EXPECT_EQ(CanonicalNumber(-0.0), "0");
    EXPECT_EQ(CanonicalNumber(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(CanonicalNumber(1e-7), "0.0000001");
    EXPECT_EQ(CanonicalNumber(-1234567.25), "-1234567.25");
    EXPECT_EQ(CanonicalNumber(1e20), "100000000000000000000");
    EXPECT_EQ(automation::ParseDouble(CanonicalNumber(1e300)), 1e300);
}

}  // namespace
}  // namespace vicenter::exchange
