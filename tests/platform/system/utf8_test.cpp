#include "platform/system/utf8.h"

#include <gtest/gtest.h>

namespace vicenter::system {
namespace {

TEST(Utf8, CountsCharactersAndCodeUnits) {
    EXPECT_EQ(CharacterCount("凭证a😀"), 4U);
    EXPECT_EQ(CodeUnitCount("凭证a😀"), 5U);
    EXPECT_EQ(CharacterCount(""), 0U);
    EXPECT_EQ(CharacterCount("\xff\xe5"), 2U);  // malformed bytes count one each
}

TEST(Utf8, HeadNeverCutsACharacter) {
    EXPECT_EQ(Head("凭证模板", 2), "凭证");
    EXPECT_EQ(Head("ab", 5), "ab");
    EXPECT_EQ(Head("😀b", 1), "😀");
    EXPECT_EQ(Head("ab", 0), "");
}

TEST(Utf8, ValidityRefusesOverlongsSurrogatesAndStrayBytes) {
    EXPECT_TRUE(IsValidUtf8("凭证 😀"));
    for (const char* text : {"\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\x80", "\xe5\x87", "\xff"}) {
        EXPECT_FALSE(IsValidUtf8(text));
    }
}

TEST(Utf8, ConvertsBothWays) {
    const std::string text = "凭证 a😀\xEF\xBF\xBD";
    EXPECT_EQ(FromUtf16(ToUtf16(text)), text);
    EXPECT_EQ(ToUtf16("😀").size(), 2U);
    EXPECT_EQ(ToUtf16("\xff"), u"\uFFFD");
    EXPECT_EQ(FromUtf16(std::u16string_view(u"\xD83D", 1)), "\xEF\xBF\xBD");
}

TEST(Utf8, TrimsBlanksOnly) {
    EXPECT_EQ(TrimBlanks("  a b  "), "a b");
    EXPECT_EQ(TrimBlanks("\ta "), "\ta");
    EXPECT_EQ(TrimBlanks("   "), "");
}

TEST(Utf8, FindsWithoutCase) {
    EXPECT_EQ(FindIgnoringCase("xUserID=5", "userid="), 1U);
    EXPECT_EQ(FindIgnoringCase("凭证Ａ", "ａ"), 6U);  // full-width letters come in pairs too
    EXPECT_EQ(FindIgnoringCase("Äb", "äB"), 0U);
    EXPECT_EQ(FindIgnoringCase("abcabc", "ABC", 1), 3U);
    EXPECT_EQ(FindIgnoringCase("abc", "d"), std::string_view::npos);
    EXPECT_EQ(FindIgnoringCase("abc", ""), 0U);
    EXPECT_EQ(FindIgnoringCase("", ""), 0U);
}

}  // namespace
}  // namespace vicenter::system
