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

}  // namespace
}  // namespace vicenter::entry
