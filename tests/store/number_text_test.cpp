#include "store/number_text.h"

#include <utility>

#include <gtest/gtest.h>

namespace vicenter::store {
namespace {

std::string Value(const char* text) {
    const auto value = Calculate(text);
    return value ? value->ToShortText() : "none";
}

TEST(NumberText, IsReadAsItIsMeantHoweverItIsWritten) {
    for (const auto& [text, plain] :
         std::initializer_list<std::pair<const char*, const char*>>{{"5", "5"},
                                                                    {"12.50", "12.50"},
                                                                    {"007", "007"},
                                                                    {".5", ".5"},
                                                                    {"5.", "5."},
                                                                    {" 5 ", "5"},
                                                                    {"\u00A05\u00A0", "5"},
                                                                    {"　5　", "5"},
                                                                    {"1,234.50", "1234.50"},
                                                                    {"12,345,678", "12345678"},
                                                                    {"１２．５", "12.5"},
                                                                    {"１，２３４", "1234"},
                                                                    {"＋5", "5"},
                                                                    {"+5", "5"},
                                                                    {"¥5", "5"},
                                                                    {"￥1,234.50", "1234.50"},
                                                                    {"¥ 5", "5"},
                                                                    {"5元", "5"},
                                                                    {"$5", "5"},
                                                                    {"5 €", "5"},
                                                                    {"\u200E5", "5"}}) {
        EXPECT_EQ(ReadNumberText(text), plain) << text;
    }
}

TEST(NumberText, NegativeNumbersAreReadAsSuch) {
    for (const char* text :
         {"-5", "－5", "\u22125", "5-", "(5)", "（5）", "-¥5", "¥-5", "¥(5)", "(¥5)", "( 5 )"})
        EXPECT_EQ(ReadNumberText(text), "-5") << text;
    for (const char* text : {"-0", "(0)"})
        EXPECT_EQ(ReadNumberText(text), "0") << text;
}

TEST(NumberText, AnythingElseIsNoNumber) {
    for (const char* text :
         {"",         " ",        "-",       "()",    "¥",       ".",          "2,5",  "1,23", ",123",
          "1234,567", "1,234,56", "12,,345", "1.2.3", "1.5,000", "5e3",        "0x1F", "1 2",  "--5",
          "-(5)",     "¥¥5",      "5%",      "abc",   "=5",      "2024-01-02", "5'",   "nan",  "一"}) {
        EXPECT_FALSE(ReadNumberText(text).has_value()) << text;
    }
}

TEST(Calculations, AreExactDecimals) {
    EXPECT_EQ(Value("=100+200"), "300");
    EXPECT_EQ(Value("860*3"), "2580");
    EXPECT_EQ(Value("=0.1+0.2"), "0.3");
    EXPECT_EQ(Value("=2+3*4"), "14");
    EXPECT_EQ(Value("=(2+3)*4"), "20");
    EXPECT_EQ(Value("= 10 / 4"), "2.5");
    EXPECT_EQ(Value("=1,000+5"), "1005");
    EXPECT_EQ(Value("＝１００×２"), "200");
    EXPECT_EQ(Value("=-5+8"), "3");
    EXPECT_EQ(Value("=10-2-3"), "5");
    EXPECT_EQ(Value("=999999999.9999*3"), "2999999999.9997");
    EXPECT_EQ(Value("=1/3"), "0.333333333333333333");
}

TEST(Calculations, ThatCannotBeDoneHaveNoValue) {
    for (const char* text :
         {"=", "=1/0", "=1+", "=*2", "=(1", "=1)", "=a1", "=SUM(1)", "=1 2", "=2,5+1", "=1..2"})
        EXPECT_EQ(Value(text), "none") << text;
    EXPECT_EQ(Value(("=" + std::string(100000, '(')).c_str()), "none");
}

TEST(Calculations, AreToldFromNumbersAndDates) {
    for (const char* text : {"=5", "＝5", " =a", "860*3", "1+2", "5-3", "1/2", "(1+2)*3"})
        EXPECT_TRUE(IsCalculation(text)) << text;
    for (const char* text :
         {"5", "-5", "5-", "(5)", "1,234", "2024-01-02", "1/2/2024", "a+b", "", "-", "1.2.3"})
        EXPECT_FALSE(IsCalculation(text)) << text;
}

TEST(Blanks, OfAnyWidthAreTrimmed) {
    EXPECT_EQ(TrimmedOfAnyBlanks("　借 \u00A0"), "借");
    EXPECT_EQ(TrimmedOfAnyBlanks("\uFEFF借\u200B"), "借");
    EXPECT_EQ(TrimmedOfAnyBlanks("a b"), "a b");
    EXPECT_EQ(TrimmedOfAnyBlanks(" 　"), "");
    EXPECT_EQ(TrimmedOfAnyBlanks("\t1001\r\n"), "1001");
}

TEST(InvisibleMarks, AreTakenOutWhereverTheyStand) {
    EXPECT_EQ(WithoutInvisibleMarks("\u202D10\u200B01\u202C"), "1001");
    EXPECT_EQ(WithoutInvisibleMarks("\u2066a b\u2069　"), "a b　");
    EXPECT_EQ(WithoutInvisibleMarks("科目é—"), "科目é—");
}

}  // namespace
}  // namespace vicenter::store
