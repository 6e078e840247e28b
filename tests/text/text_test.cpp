// The ground floor: ASCII, blanks, hexadecimal digits, numbers of texts and UTF-8.

#include <string>

#include <gtest/gtest.h>

#include "text/ascii.h"
#include "text/blanks.h"
#include "text/fnv.h"
#include "text/hex.h"
#include "text/utf8.h"

namespace vicenter::text {
namespace {

TEST(AsciiTest, FoldsLettersAndNothingElse) {
    for (int c = -128; c < 128; ++c) {
        const char each = static_cast<char>(c);
        const bool upper = each >= 'A' && each <= 'Z';
        const bool lower = each >= 'a' && each <= 'z';
        EXPECT_EQ(LowerAscii(each), upper ? static_cast<char>(each + 32) : each) << c;
        EXPECT_EQ(UpperAscii(each), lower ? static_cast<char>(each - 32) : each) << c;
        EXPECT_EQ(IsLetter(each), upper || lower) << c;
    }
    EXPECT_EQ(LowerAscii("FName凭证Ä"), "fname凭证Ä");
    EXPECT_TRUE(SameAscii("sp_ExecuteSql", "SP_EXECUTESQL"));
    EXPECT_FALSE(SameAscii("Ä", "ä"));
    EXPECT_FALSE(SameAscii("a", "ab"));
    EXPECT_FALSE(SameAscii("@", "`"));
    EXPECT_FALSE(SameAscii("[", "{"));
}

TEST(BlanksTest, CutsWhatIsNamed) {
    EXPECT_EQ(Trimmed("  a b \t", kSpace), "a b \t");
    EXPECT_EQ(Trimmed(" \ta\r\n", kSpaceAndTab), "a\r\n");
    EXPECT_EQ(Trimmed(" \ta\r\n", kSpacesAndLineEnds), "a");
    EXPECT_EQ(Trimmed("\f\va\f\v", kSpacesAndLineEnds), "\f\va\f\v");
    EXPECT_EQ(Trimmed("\f\va\f\v", kAllBlanks), "a");
    EXPECT_EQ(Trimmed("   ", kSpace), "");
    EXPECT_EQ(Trimmed("", kAllBlanks), "");
    EXPECT_EQ(WithoutLeading("  a  ", kSpace), "a  ");
    EXPECT_EQ(WithoutTrailing("  a  ", kSpace), "  a");
    // An ideographic blank and a no-break blank are characters.
    EXPECT_EQ(Trimmed("\u3000a\u00A0", kAllBlanks), "\u3000a\u00A0");
}

TEST(HexTest, ReadsAndWritesEveryByte) {
    for (int byte = 0; byte < 256; ++byte) {
        std::string text;
        AppendHex(text, static_cast<unsigned char>(byte));
        ASSERT_EQ(text.size(), 2U);
        EXPECT_EQ(HexValue(text[0]) * 16 + HexValue(text[1]), byte);
        EXPECT_EQ(HexValue(LowerAscii(text[0])) * 16 + HexValue(LowerAscii(text[1])), byte);
    }
    for (const char c : std::string("gG/:@`x \0\xE4", 10))
        EXPECT_EQ(HexValue(c), -1);
}

TEST(Utf8Test, EveryCharacterComesBack) {
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        if (code >= 0xD800 && code < 0xE000) continue;
        std::string text;
        AppendUtf8(text, code);
        const CodePoint read = ReadUtf8(text, 0);
        ASSERT_TRUE(read.valid && read.code == code && read.length == text.size())
            << static_cast<std::uint32_t>(code);
        ASSERT_EQ(text.size(), code < 0x80 ? 1U : code < 0x800 ? 2U : code < 0x10000 ? 3U : 4U);
        for (std::size_t cut = 1; cut < text.size(); ++cut) {
            const CodePoint broken = ReadUtf8(std::string_view(text).substr(0, cut), 0);
            ASSERT_TRUE(!broken.valid && broken.length == 1 && broken.code == kReplacement)
                << static_cast<std::uint32_t>(code);
        }
    }
}

TEST(Utf8Test, WhatIsMalformedCountsByteByByte) {
    const std::string malformed[] = {"\x80",
                                     "\xBF",
                                     "\xC0\x80",
                                     "\xC1\xBF",
                                     "\xE0\x80\x80",
                                     "\xE0\x9F\xBF",
                                     "\xED\xA0\x80",
                                     "\xED\xBF\xBF",
                                     "\xF0\x80\x80\x80",
                                     "\xF4\x90\x80\x80",
                                     "\xF5\x80\x80\x80",
                                     "\xFF",
                                     "\xE5\x87",
                                     "\xE5\x87"
                                     "a",
                                     "\xF0\x9F\x98"};
    for (const std::string& text : malformed) {
        const CodePoint read = ReadUtf8(text, 0);
        EXPECT_FALSE(read.valid) << testing::PrintToString(text);
        EXPECT_EQ(read.length, 1U) << testing::PrintToString(text);
        EXPECT_TRUE(read.code == kReplacement);
    }
    const CodePoint second = ReadUtf8(
        "\xE5"
        "凭",
        1);
    EXPECT_TRUE(second.valid && second.code == U'凭');
}

TEST(Utf8Test, HalvesOfPairsAreReplaced) {
    std::string text;
    AppendUtf8(text, 0xD83D);
    AppendUtf8(text, 0x110000);
    EXPECT_EQ(text, "\uFFFD\uFFFD");
    EXPECT_EQ(CodeUnits(U'凭'), 1U);
    EXPECT_EQ(CodeUnits(U'𠮷'), 2U);
}

TEST(FnvTest, GivesTheNumbersThatArePublishedForIt) {
    const auto of = [](std::string_view text) {
        Fnv number;
        number.Add(text);
        return number.Value();
    };
    EXPECT_EQ(of(""), 0xCBF29CE484222325U);
    EXPECT_EQ(of("a"), 0xAF63DC4C8601EC8CU);
    EXPECT_EQ(of("foobar"), 0x85944171F73967E8U);
    EXPECT_EQ(of(std::string_view("\0", 1)), 0xAF63BD4C8601B7DFU);
    Fnv gone(of("foo"));
    gone.Add("bar");
    EXPECT_EQ(gone.Value(), of("foobar"));
}

}  // namespace
}  // namespace vicenter::text
