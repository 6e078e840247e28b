#include "store/cell_rules.h"

#include <initializer_list>
#include <string>

#include <gtest/gtest.h>

#include "store/number_text.h"

namespace vicenter::store {

namespace {

constexpr std::initializer_list<int> kTextColumns{2, 5, 6, 9, 10, 11, 13, 17, 21};
constexpr std::initializer_list<int> kDecimalColumns{14, 15, 18, 19, 20};
constexpr std::initializer_list<int> kIdColumns{4, 8, 12, 16};

std::string Repeated(const std::string& text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i)
        result += text;
    return result;
}

TextVerdict Verdict(int gridColumn, const std::string& text) {
    return CheckTypedText(gridColumn, text);
}

}  // namespace

// --- characters

TEST(TypedCharacters, ASingleQuoteAndAVerticalBarAreRefusedInEveryColumn) {
    for (int c = 1; c <= kColumnCount; ++c) {
        EXPECT_FALSE(AcceptsCharacter(c, U'\'')) << c;
        EXPECT_FALSE(AcceptsCharacter(c, U'|')) << c;
    }
}

TEST(TypedCharacters, ControlCharactersAreRefusedInEveryColumn) {
    for (int c = 1; c <= kColumnCount; ++c) {
        for (const char32_t control : {U'\0', U'\t', U'\n', U'\r', U'\x1B', U'\x7F'})
            EXPECT_FALSE(AcceptsCharacter(c, control)) << c;
    }
}

TEST(TypedCharacters, TheTemplateNumberTakesDigitsOnly) {
    for (char32_t digit = U'0'; digit <= U'9'; ++digit)
        EXPECT_TRUE(AcceptsCharacter(column::kNo, digit));
    for (const char32_t other : {U'a', U'Z', U'-', U'.', U',', U' ', U'/', U':', U'一', U'１'})
        EXPECT_FALSE(AcceptsCharacter(column::kNo, other));
}

TEST(TypedCharacters, TextColumnsTakeAnythingElse) {
    for (const int c : kTextColumns) {
        for (const char32_t character : {U'a', U'"', U'.', U',', U' ', U'借', U'\U0001F600'})
            EXPECT_TRUE(AcceptsCharacter(c, character)) << c;
    }
}

TEST(TypedCharacters, NumberColumnsTakeWhateverMayBelongToANumberAndAnythingElse) {
    for (const int c : {14, 15, 18, 19, 20, column::kFileCount}) {
        for (const char32_t character :
             {U'7', U'.', U'-', U'+', U',', U'=', U'*', U'/', U'(', U'e', U'¥', U' ', U'１'})
            EXPECT_TRUE(AcceptsCharacter(c, character)) << c;
    }
}

TEST(TypedCharacters, LockedColumnsAndTheDirectionListTakeNone) {
    for (const int c : kIdColumns)
        EXPECT_FALSE(AcceptsCharacter(c, U'1')) << c;
    for (const char32_t character : {U'a', U'1', U'借'})
        EXPECT_FALSE(AcceptsCharacter(column::kDirection, character));
}

// --- whole texts

TEST(TypedTexts, TheEmptyTextIsTakenEverywhereButInLockedColumns) {
    for (int c = 1; c <= kColumnCount; ++c) {
        EXPECT_EQ(Verdict(c, ""), Column(c).locked ? TextVerdict::Locked : TextVerdict::Taken) << c;
    }
}

TEST(TypedTexts, LockedColumnsTakeNothing) {
    for (const int c : kIdColumns)
        EXPECT_EQ(Verdict(c, "1001"), TextVerdict::Locked) << c;
}

TEST(TypedTexts, RefusedCharactersAreRefusedWithinATextToo) {
    for (const int c : kTextColumns) {
        for (const char* text : {"a'b", "a|b", "'", "|", "a\tb", "a\nb", "a\x7F"})
            EXPECT_EQ(Verdict(c, text), TextVerdict::BadCharacter) << c << " " << text;
        EXPECT_EQ(Verdict(c, std::string("a\0b", 3)), TextVerdict::BadCharacter) << c;
    }
}

TEST(TypedTexts, EveryTextColumnTakesItsLimitOfCharactersAndNoMore) {
    for (const int c : kTextColumns) {
        const int limit = Column(c).maxCharacters;
        EXPECT_EQ(Verdict(c, Repeated("a", limit)), TextVerdict::Taken) << c;
        EXPECT_EQ(Verdict(c, Repeated("a", limit + 1)), TextVerdict::TooLong) << c;
        // A Chinese character counts once, not by its bytes.
        EXPECT_EQ(Verdict(c, Repeated("借", limit)), TextVerdict::Taken) << c;
        EXPECT_EQ(Verdict(c, Repeated("借", limit + 1)), TextVerdict::TooLong) << c;
    }
}

TEST(TypedTexts, ACharacterOutsideTheBasicPlaneCountsTwiceAsTheServerCountsIt) {
    EXPECT_EQ(Verdict(column::kCurrencyName, Repeated("😀", 15)), TextVerdict::Taken);
    EXPECT_EQ(Verdict(column::kCurrencyName, Repeated("😀", 15) + "a"), TextVerdict::TooLong);
}

TEST(TypedTexts, TheDirectionIsOneOfThreeChoices) {
    for (const char* text : {"借", "贷", "  ", ""})
        EXPECT_EQ(Verdict(column::kDirection, text), TextVerdict::Taken) << text;
    for (const char* text : {"借方", "d", "1", "借 ", " 贷"})
        EXPECT_EQ(Verdict(column::kDirection, text), TextVerdict::NotInList) << text;
}

TEST(TypedTexts, TheTemplateNumberTakesDigitsUpToTheLargestInteger) {
    EXPECT_EQ(Verdict(1, "0"), TextVerdict::Taken);
    EXPECT_EQ(Verdict(1, "007"), TextVerdict::Taken);
    EXPECT_EQ(Verdict(1, "2147483647"), TextVerdict::Taken);
    EXPECT_EQ(Verdict(1, "2147483648"), TextVerdict::TooLarge);
    EXPECT_EQ(Verdict(1, "9999999999"), TextVerdict::TooLarge);
    EXPECT_EQ(Verdict(1, "00000000001"), TextVerdict::TooLong);
    for (const char* text : {"-1", "+1", "1.0", "1,000", "1e3", "0x1F", " 1", "1 ", "一", "１", "a"})
        EXPECT_EQ(Verdict(1, text), TextVerdict::BadCharacter) << text;
}

TEST(TypedTexts, AttachmentsAreAWholeNumberUpToNineNines) {
    const int c = column::kFileCount;
    EXPECT_EQ(Verdict(c, "0"), TextVerdict::Taken);
    EXPECT_EQ(Verdict(c, "999999999"), TextVerdict::Taken);
    EXPECT_EQ(Verdict(c, "0000999999999"), TextVerdict::Taken);
    EXPECT_EQ(Verdict(c, "1000000000"), TextVerdict::TooLarge);
    for (const char* text : {".", "+1", "1,000", "1e3", "0x1", "a", "¥1", "１"})
        EXPECT_EQ(Verdict(c, text), TextVerdict::NotANumber) << text;
    for (const char* text : {"1.0", "1.", "1.5"})
        EXPECT_EQ(Verdict(c, text), TextVerdict::NotWhole) << text;
    EXPECT_EQ(Verdict(c, "-1"), TextVerdict::Negative);
}

TEST(TypedTexts, DecimalColumnsTakeNumbersFromZeroToNineNines) {
    for (const int c : kDecimalColumns) {
        for (const char* text : {"0", "0.0", "1", "1.5", ".5", "5.", "007.50", "999999999", "999999999.0000"})
            EXPECT_EQ(Verdict(c, text), TextVerdict::Taken) << c << " " << text;
        for (const char* text : {"1000000000", "999999999.1", "999999999.0001"})
            EXPECT_EQ(Verdict(c, text), TextVerdict::TooLarge) << c << " " << text;
        for (const char* text : {"-1", "-0.5"})
            EXPECT_EQ(Verdict(c, text), TextVerdict::Negative) << c << " " << text;
        for (const char* text : {"+1", ".", "1.2.3", "1,000", "1,5", "1e3", "1E3", "1e,3", "0x1F", "¥1", "$1",
                                 " 1", "1 ", "１", "nan", "inf", "一"}) {
            EXPECT_EQ(Verdict(c, text), TextVerdict::NotANumber) << c << " " << text;
        }
    }
}

TEST(TypedTexts, EveryDecimalColumnTakesItsDecimalsAndNoMore) {
    for (const int c : kDecimalColumns) {
        const int limit = Column(c).decimals;
        EXPECT_EQ(Verdict(c, "1." + Repeated("3", limit)), TextVerdict::Taken) << c;
        EXPECT_EQ(Verdict(c, "1." + Repeated("3", limit + 1)), TextVerdict::TooManyDecimals) << c;
    }
    EXPECT_EQ(Verdict(column::kAmount, "0.12345"), TextVerdict::TooManyDecimals);
    EXPECT_EQ(Verdict(column::kRate, "0.1234567891"), TextVerdict::Taken);
}

// --- what a cell makes of a text

namespace {

struct Way {
    const char* text;
    const char* cell;
};

void ExpectRead(int gridColumn, TextOrigin origin, std::initializer_list<Way> ways) {
    for (const Way& way : ways) {
        const TextReading reading = ReadCellText(gridColumn, way.text, origin);
        EXPECT_EQ(reading.verdict, TextVerdict::Taken) << way.text;
        EXPECT_EQ(reading.text, way.cell) << way.text;
    }
}

void ExpectRefused(int gridColumn, TextOrigin origin, TextVerdict verdict,
                   std::initializer_list<const char*> texts) {
    for (const char* text : texts) {
        const TextReading reading = ReadCellText(gridColumn, text, origin);
        EXPECT_EQ(reading.verdict, verdict) << text << ": " << VerdictText(reading.verdict, gridColumn);
        EXPECT_EQ(reading.text, text) << "what is refused stays as it was given";
    }
}

}  // namespace

TEST(CellTexts, AmountsAreReadAsSpreadsheetsShowThem) {
    for (const TextOrigin origin : {TextOrigin::Typed, TextOrigin::Given}) {
        ExpectRead(column::kAmount, origin,
                   {{"1,234.50", "1234.50"},
                    {" 860 ", "860"},
                    {"￥1,234.50", "1234.50"},
                    {"１２．５", "12.5"},
                    {"+5", "5"},
                    {"1.50000", "1.5000"},
                    {"12.50", "12.50"},
                    {"007", "007"},
                    {"5\r\n", "5"},
                    {"  ", ""},
                    {"-0", "0"}});
        ExpectRefused(column::kAmount, origin, TextVerdict::Negative,
                      {"-9", "(5)", "5-", "-¥1,234.50", "（5）"});
        ExpectRefused(column::kAmount, origin, TextVerdict::NotANumber,
                      {"2,5", "1.2.3", "5e3", "abc", "2024-01-02", ".", "--", "+-", "￥"});
        ExpectRefused(column::kAmount, origin, TextVerdict::TooLarge, {"1,000,000,000"});
        ExpectRefused(column::kAmount, origin, TextVerdict::TooManyDecimals, {"1.23456"});
        ExpectRefused(column::kAmount, origin, TextVerdict::BadCharacter, {"5'", "5|6", "5\t6"});
    }
}

// As the accounting format shows it; an empty cell is stored as zero.
TEST(CellTexts, ADashOfASpreadsheetIsZero) {
    for (const int gridColumn : {column::kAmount, column::kQuantity, column::kFileCount}) {
        ExpectRead(gridColumn, TextOrigin::Given,
                   {{"-", ""}, {" -   ", ""}, {" ￥ -   ", ""}, {"¥-", ""}, {"$ -\u00A0", ""}});
        ExpectRefused(gridColumn, TextOrigin::Typed, TextVerdict::NotANumber, {"-"});
    }
    ExpectRefused(column::kNo, TextOrigin::Given, TextVerdict::BadCharacter, {"-"});
}

TEST(CellTexts, WholeNumbersMayBeWrittenWithZerosBehindThePoint) {
    ExpectRead(column::kFileCount, TextOrigin::Given, {{"3", "3"}, {"3.00", "3"}, {"1,000", "1000"}});
    ExpectRead(column::kNo, TextOrigin::Given, {{" 3 ", "3"}, {"３", "3"}, {"3.0", "3"}, {"01", "01"}});
    ExpectRefused(column::kFileCount, TextOrigin::Given, TextVerdict::NotWhole, {"1.5"});
    ExpectRefused(column::kFileCount, TextOrigin::Typed, TextVerdict::NotANumber, {"5e3"});
    ExpectRefused(column::kNo, TextOrigin::Given, TextVerdict::BadCharacter, {"2a", "-1", "1.5"});
}

TEST(CellTexts, CalculationsBecomeTheirValueInDecimals) {
    ExpectRead(
        column::kAmount, TextOrigin::Typed,
        {{"=100+200", "300"}, {"860*3", "2580"}, {"=0.1+0.2", "0.3"}, {"10/3", "3.3333"}, {"=5-8+3", "0"}});
    ExpectRead(column::kFileCount, TextOrigin::Typed, {{"2*3", "6"}});
    ExpectRead(column::kAmount, TextOrigin::Given, {{"=100+200", "300"}});
    ExpectRefused(column::kAmount, TextOrigin::Typed, TextVerdict::NoCalculation,
                  {"=1/0", "=1+", "=abc", "=SUM(A1:A2)", "3*/4"});
    ExpectRefused(column::kAmount, TextOrigin::Typed, TextVerdict::Negative, {"=5-8"});
    ExpectRefused(column::kFileCount, TextOrigin::Typed, TextVerdict::NotWhole, {"7/2"});
    ExpectRefused(column::kAmount, TextOrigin::Given, TextVerdict::NotANumber, {"860*3"});
    ExpectRead(column::kExplanation, TextOrigin::Typed, {{"=100+200", "=100+200"}, {"860*3", "860*3"}});
}

TEST(CellTexts, DirectionsMayHaveBlanksAround) {
    for (const char* text : {"借", " 借", "借 ", "　借\r\n", "\u00A0借"})
        EXPECT_EQ(ReadCellText(column::kDirection, text, TextOrigin::Given).text, "借") << text;
    ExpectRefused(column::kDirection, TextOrigin::Given, TextVerdict::NotInList, {"借方", "d"});
}

TEST(CellTexts, TextsLoseTheirLineEndAndNothingElse) {
    ExpectRead(column::kExplanation, TextOrigin::Given, {{"a\r\n", "a"}, {" a ", " a "}, {"1,000", "1,000"}});
    ExpectRefused(column::kExplanation, TextOrigin::Given, TextVerdict::BadCharacter, {"a\nb", "it's"});
    ExpectRefused(column::kAccountId, TextOrigin::Given, TextVerdict::Locked, {"1"});
}

TEST(CellTexts, EndlessTextsAreTooLongForEveryColumn) {
    const std::string text(kLongestKeptText + 1, '1');
    for (int c = 1; c <= kColumnCount; ++c)
        EXPECT_EQ(ReadCellText(c, text, TextOrigin::Given).verdict, TextVerdict::TooLong) << c;
}

TEST(TypedTexts, EveryRefusalIsExplainedAndNothingElseIs) {
    EXPECT_EQ(VerdictText(TextVerdict::Taken, 1), "");
    EXPECT_EQ(VerdictText(TextVerdict::Locked, 4), "该列由系统填写，不能录入");
    EXPECT_EQ(VerdictText(TextVerdict::BadCharacter, 1), "只能录入数字");
    EXPECT_EQ(VerdictText(TextVerdict::BadCharacter, 2), "不能包含单引号、竖线或控制字符");
    EXPECT_EQ(VerdictText(TextVerdict::TooLong, 13), "长度不能超过30个字符");
    EXPECT_EQ(VerdictText(TextVerdict::NotANumber, 7), "必须是不小于0的整数");
    EXPECT_EQ(VerdictText(TextVerdict::NotANumber, 20), "必须是不小于0的数字");
    EXPECT_EQ(VerdictText(TextVerdict::Negative, 20), "不能小于0");
    EXPECT_EQ(VerdictText(TextVerdict::NotWhole, 7), "必须是整数");
    EXPECT_EQ(VerdictText(TextVerdict::NoCalculation, 20), "算式不能计算");
    EXPECT_EQ(VerdictText(TextVerdict::TooLarge, 1), "不能大于2147483647");
    EXPECT_EQ(VerdictText(TextVerdict::TooLarge, 20), "不能大于999999999");
    EXPECT_EQ(VerdictText(TextVerdict::TooManyDecimals, 20), "小数位数不能超过4位");
    EXPECT_EQ(VerdictText(TextVerdict::TooManyDecimals, 19), "小数位数不能超过10位");
    EXPECT_EQ(VerdictText(TextVerdict::NotInList, 3), "只能选择“借”或“贷”");
}

// --- texts of programs

TEST(ProgramTexts, TheTemplateNumberTakesDigitsOnlyByAnyWayIn) {
    for (const char* text : {"", "0", "12", "2147483647", "000000000012"})
        EXPECT_TRUE(AcceptsProgramText(1, text)) << text;
    for (const char* text :
         {"2147483648", "99999999999999999999", "-1", "1.0", "a", " 1", "1;drop table t", "１"})
        EXPECT_FALSE(AcceptsProgramText(1, text)) << text;
}

TEST(ProgramTexts, IdColumnsTakeWholeNumbersSinceTheyGoBareIntoStatements) {
    for (const int c : kIdColumns) {
        for (const char* text : {"", "0", "1001", "-1"})
            EXPECT_TRUE(AcceptsProgramText(c, text)) << c << " " << text;
        for (const char* text : {"-", "1;drop table t", "1 or 1=1", "a", "1.5", "--1", "12345678901"})
            EXPECT_FALSE(AcceptsProgramText(c, text)) << c << " " << text;
    }
}

TEST(ProgramTexts, EveryOtherColumnTakesAnyText) {
    for (const int c : {2, 3, 5, 6, 7, 9, 10, 11, 13, 14, 15, 17, 18, 19, 20, 21})
        EXPECT_TRUE(AcceptsProgramText(c, "a'b|c\n" + Repeated("x", 300))) << c;
}

// --- numbers

TEST(BareNumbers, HaveNeitherBlanksNorSign) {
    for (const char* text : {"0", "12", "12.5", ".5", "5.", "00"})
        EXPECT_TRUE(IsBareNumber(text)) << text;
    for (const char* text :
         {"", ".", "..", "-3", "+3", " 7", "7 ", "1.2.3", "1,000", "1e3", "１", "12a", "1..2"})
        EXPECT_FALSE(IsBareNumber(text)) << text;
}

TEST(PlainNumbers, AreDigitsWithAtMostOnePointAndASign) {
    for (const char* text : {"0", "12", "12.5", ".5", "5.", "-3", "+3", " 7 ", "00"})
        EXPECT_TRUE(IsPlainNumber(text)) << text;
    for (const char* text : {"", " ", ".", "-", "+", "-.", "1.2.3", "1,000", "1e3", "1e,3", "0x1F", "&H1F",
                             "¥1", "$1", "1 2", "--1", "１", "12a", "nan"}) {
        EXPECT_FALSE(IsPlainNumber(text)) << text;
    }
}

// --- painting

TEST(DisplayTexts, DecimalColumnsGetThousandsSeparators) {
    EXPECT_EQ(DisplayText(column::kAmount, "1234567.5"), "1,234,567.50");
    EXPECT_EQ(DisplayText(column::kQuantity, "1000"), "1,000");
    EXPECT_EQ(DisplayText(column::kQuantity, "999"), "999");
    EXPECT_EQ(DisplayText(column::kRate, "6.8765432101"), "6.8765432101");
}

TEST(DisplayTexts, NoDigitThatMattersIsLost) {
    EXPECT_EQ(DisplayText(column::kAmount, "0.0001"), "0.0001");
    EXPECT_EQ(DisplayText(column::kPrice, "999999998.1234567891"), "999,999,998.1234567891");
    EXPECT_EQ(DisplayText(column::kAmountFor, "123456789.1234"), "123,456,789.1234");
}

TEST(DisplayTexts, WhatWasTypedAndWhatTheAccountSetKeepsOfItReadTheSame) {
    for (const int c : kDecimalColumns) {
        EXPECT_EQ(DisplayText(c, "1.50"), DisplayText(c, "1.5")) << c;
        EXPECT_EQ(DisplayText(c, "007"), DisplayText(c, "7")) << c;
        EXPECT_EQ(DisplayText(c, ".5"), DisplayText(c, "0.5")) << c;
        EXPECT_EQ(DisplayText(c, "5."), DisplayText(c, "5")) << c;
        EXPECT_EQ(DisplayText(c, "12.3400"), DisplayText(c, "12.34")) << c;
    }
}

TEST(DisplayTexts, AmountsAndPricesShowTwoDecimalsAtLeast) {
    for (const int c : {column::kAmount, column::kAmountFor, column::kPrice})
        EXPECT_EQ(DisplayText(c, "5"), "5.00") << c;
    for (const int c : {column::kRate, column::kQuantity})
        EXPECT_EQ(DisplayText(c, "5.0"), "5") << c;
}

TEST(DisplayTexts, NegativeNumbersKeepTheirSign) {
    EXPECT_EQ(DisplayText(column::kAmount, "-1234.5"), "-1,234.50");
}

TEST(DisplayTexts, EveryOtherTextIsPaintedAsItIs) {
    EXPECT_EQ(DisplayText(column::kAmount, ""), "");
    EXPECT_EQ(DisplayText(column::kAmount, "abc"), "abc");
    EXPECT_EQ(DisplayText(column::kAmount, "1e5"), "1e5");
    EXPECT_EQ(DisplayText(column::kAmount, "."), ".");
    EXPECT_EQ(DisplayText(column::kNo, "0012345"), "0012345");
    EXPECT_EQ(DisplayText(column::kAccountNumber, "0012345.50"), "0012345.50");
    EXPECT_EQ(DisplayText(column::kFileCount, "12345"), "12345");
}

}  // namespace vicenter::store
