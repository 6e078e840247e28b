// The string builder's text, its growth by chunks and its errors.

#include "support/string_builder.h"

#include <string>

#include <gtest/gtest.h>

#include "automation/error.h"

namespace vicenter::support {
namespace {

template <class Action>
std::int32_t NumberOfError(const Action& action) {
    try {
        action();
        return 0;
    } catch (const automation::Error& error) {
        EXPECT_EQ(error.Source(), "StringBuilder");
        return error.Number();
    }
}

constexpr std::size_t kChunk = 8192;  // characters

TEST(StringBuilder, ANewOneIsEmpty) {
    const StringBuilder builder;
    EXPECT_EQ(builder.ToString(), "");
    EXPECT_EQ(builder.Length(), 0U);
    EXPECT_EQ(builder.ChunkSize(), kChunk);
}

TEST(StringBuilder, AppendsTextsAndLines) {
    StringBuilder builder;
    builder.Append("凭证");
    builder.AppendLine("模板");
    builder.Append("");
    builder.AppendLine("");
    EXPECT_EQ(builder.ToString(), "凭证模板\r\n\r\n");
}

TEST(StringBuilder, AnEmptyTextChangesNothing) {
    StringBuilder builder;
    builder.Append("");
    EXPECT_EQ(builder.Capacity(), 0U);
    EXPECT_EQ(builder.ToString(), "");
}

TEST(StringBuilder, CountsUtf16CodeUnits) {
    StringBuilder builder;
    builder.Append("é凭😀");
    EXPECT_EQ(builder.Length(), 4U);
}

TEST(StringBuilder, GrowsByOneChunkOnlyWhenTheTextNoLongerFits) {
    StringBuilder builder;
    builder.Append("x");
    EXPECT_EQ(builder.Capacity(), kChunk);
    builder.Append(std::string(kChunk - 1, 'x'));
    EXPECT_EQ(builder.Capacity(), kChunk);
    builder.Append("x");
    EXPECT_EQ(builder.Capacity(), 2 * kChunk);
    EXPECT_EQ(builder.ToString(), std::string(kChunk + 1, 'x'));
}

TEST(StringBuilder, GrowsByAsManyChunksAsALongTextNeeds) {
    StringBuilder builder;
    builder.Append(std::string(3 * kChunk + 1, 'x'));
    EXPECT_EQ(builder.Capacity(), 4 * kChunk);
}

TEST(StringBuilder, NeverDoubles) {
    StringBuilder builder;
    const std::u16string piece(1000, u'x');
    for (int i = 0; i < 2000; ++i) {
        builder.Append(piece);
        ASSERT_LT(builder.Capacity() - builder.Length(), kChunk);
    }
}

TEST(StringBuilder, TheChunkSizeIsSetInCharacters) {
    StringBuilder builder;
    builder.SetChunkSize(10);
    EXPECT_EQ(builder.ChunkSize(), 10U);
    builder.Append("123456789012345");
    EXPECT_EQ(builder.Capacity(), 20U);
    builder.SetChunkSize(3);
    builder.Append("123456");
    EXPECT_EQ(builder.Capacity(), 23U);
    EXPECT_EQ(builder.ToString(), "123456789012345123456");
}

TEST(StringBuilder, AChunkOfNothingIsRefused) {
    StringBuilder builder;
    EXPECT_EQ(NumberOfError([&] { builder.SetChunkSize(0); }), 5);
    EXPECT_EQ(NumberOfError([&] { builder.SetChunkSize(-1); }), 5);
    EXPECT_EQ(builder.ChunkSize(), kChunk);
}

TEST(StringBuilder, KeepsLongTextsWhileItsMemoryMoves) {
    StringBuilder builder;
    std::u16string expected;
    for (int i = 0; expected.size() < 4'000'000; ++i) {
        const std::string number = std::to_string(i) + ",";
        builder.Append(number);
        expected.append(number.begin(), number.end());
    }
    EXPECT_TRUE(builder.Text() == expected);
    builder.Remove(0, 3'900'000);
    builder.TrimToSize();
    EXPECT_TRUE(builder.Text() == expected.substr(3'900'000));
    EXPECT_EQ(builder.Capacity(), builder.Length());
    builder.Append(u"more");
    EXPECT_TRUE(builder.Text() == expected.substr(3'900'000) + u"more");
}

TEST(StringBuilder, InsertsWithinTheUsedPart) {
    StringBuilder builder;
    builder.Insert(0, "cd");
    builder.Insert(0, "a");
    builder.Insert(1, "凭");
    builder.Insert(4, "!");
    builder.Insert(2, "");
    EXPECT_EQ(builder.ToString(), "a凭cd!");
}

TEST(StringBuilder, AnInsertGrowsByChunks) {
    StringBuilder builder;
    builder.Append(std::string(kChunk, 'x'));
    builder.Insert(1, "yy");
    EXPECT_EQ(builder.Capacity(), 2 * kChunk);
    EXPECT_EQ(builder.ToString(), "xyy" + std::string(kChunk - 1, 'x'));
}

TEST(StringBuilder, AnInsertOutsideTheUsedPartIsRefused) {
    StringBuilder builder;
    builder.Append("abc");
    EXPECT_EQ(NumberOfError([&] { builder.Insert(4, "x"); }), 9);
    EXPECT_EQ(NumberOfError([&] { builder.Insert(-1, "x"); }), 9);
    EXPECT_EQ(NumberOfError([&] { builder.Insert(4, ""); }), 9);
    EXPECT_EQ(builder.ToString(), "abc");
}

TEST(StringBuilder, RemovesRangesOfTheUsedPart) {
    StringBuilder builder;
    builder.Append("abcdef");
    builder.Remove(1, 2);
    EXPECT_EQ(builder.ToString(), "adef");
    builder.Remove(3, 1);
    EXPECT_EQ(builder.ToString(), "ade");
    builder.Remove(3, 0);
    builder.Remove(0, 3);
    EXPECT_EQ(builder.ToString(), "");
    EXPECT_EQ(builder.Capacity(), kChunk);
}

TEST(StringBuilder, ARemovalOutsideTheUsedPartIsRefusedAndChangesNothing) {
    StringBuilder builder;
    builder.Append("abc");
    EXPECT_EQ(NumberOfError([&] { builder.Remove(4, 0); }), 9);
    EXPECT_EQ(NumberOfError([&] { builder.Remove(4, 1); }), 9);
    EXPECT_EQ(NumberOfError([&] { builder.Remove(2, 2); }), 9);
    EXPECT_EQ(NumberOfError([&] { builder.Remove(-1, 1); }), 9);
    EXPECT_EQ(NumberOfError([&] { builder.Remove(1, -1); }), 9);
    EXPECT_EQ(NumberOfError([&] { builder.Remove(1, INT64_MAX); }), 9);
    EXPECT_EQ(builder.ToString(), "abc");
}

TEST(StringBuilder, HalfAPairThatIsLeftReadsAsTheReplacementCharacter) {
    StringBuilder builder;
    builder.Append("a😀");
    builder.Remove(2, 1);
    EXPECT_EQ(builder.ToString(), "a\xEF\xBF\xBD");
    builder.Append(u"\xDE00");
    EXPECT_EQ(builder.ToString(), "a😀");
}

TEST(StringBuilder, FindsTextByPositionsFromOne) {
    StringBuilder builder;
    builder.Append("凭证😀模板凭证");
    EXPECT_EQ(builder.Find("凭证"), 1);
    EXPECT_EQ(builder.Find("凭证", 2), 7);
    EXPECT_EQ(builder.Find("模板"), 5);
    EXPECT_EQ(builder.Find("凭证", 8), 0);
    EXPECT_EQ(builder.Find("没有"), 0);
    EXPECT_EQ(builder.Find("凭证", 100), 0);
}

TEST(StringBuilder, FindsAnEmptyTextAtTheStart) {
    StringBuilder builder;
    EXPECT_EQ(builder.Find(""), 0);
    builder.Append("abc");
    EXPECT_EQ(builder.Find(""), 1);
    EXPECT_EQ(builder.Find("", 3), 3);
    EXPECT_EQ(builder.Find("", 4), 0);
}

TEST(StringBuilder, FindIgnoresCaseOnlyWhenAsked) {
    StringBuilder builder;
    builder.Append("😀Abc ÄÖ");
    EXPECT_EQ(builder.Find("aBC"), 0);
    EXPECT_EQ(builder.Find("aBC", 1, 1), 3);
    EXPECT_EQ(builder.Find("äö", 2, 1), 7);
    EXPECT_EQ(builder.Find("aBC", 4, 1), 0);
}

TEST(StringBuilder, FindLooksOnlyAtTheUsedPart) {
    StringBuilder builder;
    builder.Append("abcdef");
    builder.Remove(3, 3);
    EXPECT_EQ(builder.Find("de"), 0);
    EXPECT_EQ(builder.Find("DE", 1, 1), 0);
    builder.Clear();
    EXPECT_EQ(builder.Find("a"), 0);
}

TEST(StringBuilder, FindRefusesStartsAndComparisonsThatDoNotExist) {
    StringBuilder builder;
    builder.Append("abc");
    EXPECT_EQ(NumberOfError([&] { builder.Find("a", 0); }), 5);
    EXPECT_EQ(NumberOfError([&] { builder.Find("a", -1); }), 5);
    EXPECT_EQ(NumberOfError([&] { builder.Find("a", 1, 2); }), 5);
}

TEST(StringBuilder, ClearKeepsTheBufferAndTrimCutsIt) {
    StringBuilder builder;
    builder.Append("abc");
    builder.TrimToSize();
    EXPECT_EQ(builder.Capacity(), 3U);
    builder.Append("d");
    EXPECT_EQ(builder.Capacity(), 3U + kChunk);
    EXPECT_EQ(builder.ToString(), "abcd");
    builder.Clear();
    EXPECT_EQ(builder.Capacity(), 3U + kChunk);
    EXPECT_EQ(builder.ToString(), "");
    builder.TrimToSize();
    EXPECT_EQ(builder.Capacity(), 0U);
    builder.Append("again");
    EXPECT_EQ(builder.ToString(), "again");
}

}  // namespace
}  // namespace vicenter::support
