#include "entry/single_line.h"

#include <gtest/gtest.h>

namespace vicenter::entry {
namespace {

TEST(SingleLine, LosesTheLineEndsBehindIt) {
    EXPECT_EQ(WithoutLineEnd("报销办公费\r\n"), "报销办公费");
    EXPECT_EQ(WithoutLineEnd("a\n\r\n"), "a");
    EXPECT_EQ(WithoutLineEnd("a\nb"), "a\nb");
    EXPECT_EQ(WithoutLineEnd(" a "), " a ");
    EXPECT_EQ(WithoutLineEnd("\r\n"), "");
    EXPECT_EQ(WithoutLineEnd(""), "");
}

TEST(SingleLine, HasNoControlCharacters) {
    for (const char* text : {"a\tb", "a\nb", "\x01", "a\x7F"})
        EXPECT_TRUE(HasControlCharacter(text)) << text;
    for (const char* text : {"", "a b", "摘要", "'|,"})
        EXPECT_FALSE(HasControlCharacter(text)) << text;
}

TEST(SingleLine, ShowsWhatHasNoLookOfItsOwn) {
    EXPECT_EQ(InOneLine("摘要 a  b"), "摘要 a  b");
    EXPECT_EQ(InOneLine("a\r\nb\nc\rd"), "a↵b↵c↵d");
    EXPECT_EQ(InOneLine("\u0085\u2028\u2029"), "↵↵↵");
    EXPECT_EQ(InOneLine("a\tb"), "a b");
    EXPECT_EQ(InOneLine("\x01\x7F\u009F\u202E\u2066"), "□□□□□");
    EXPECT_EQ(InOneLine("\u00A0\u2027\u202F\u2065"), "\u00A0\u2027\u202F\u2065");
    EXPECT_EQ(InOneLine("\xE2\x80"), "\xE2\x80") << "cut short";
    EXPECT_EQ(InOneLine("\xC2"), "\xC2");
}

}  // namespace
}  // namespace vicenter::entry
