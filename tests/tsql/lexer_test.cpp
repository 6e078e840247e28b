#include "tsql/syntax/lexer.h"

#include <chrono>
#include <vector>

#include <gtest/gtest.h>

#include "tsql/base/diagnostic.h"

namespace vicenter::tsql {
namespace {

std::vector<Token> Lex(std::string_view text) {
    std::vector<Token> tokens;
    Lexer lexer(text);
    for (Token token = lexer.Next(); token.kind != TokenKind::kEnd; token = lexer.Next())
        tokens.push_back(token);
    return tokens;
}

std::vector<std::string> Texts(std::string_view text) {
    std::vector<std::string> texts;
    for (const Token& token : Lex(text))
        texts.emplace_back(token.text);
    return texts;
}

TokenKind KindOf(std::string_view text) {
    const std::vector<Token> tokens = Lex(text);
    EXPECT_EQ(tokens.size(), 1U) << text;
    return tokens.empty() ? TokenKind::kEnd : tokens[0].kind;
}

using Strings = std::vector<std::string>;

TEST(LexerTest, ReadsNamesOfEverySort) {
    EXPECT_EQ(KindOf("FNo"), TokenKind::kIdentifier);
    EXPECT_EQ(KindOf("_a1$@#"), TokenKind::kIdentifier);
    EXPECT_EQ(KindOf("#temp"), TokenKind::kIdentifier);
    EXPECT_EQ(KindOf("##shared"), TokenKind::kIdentifier);
    EXPECT_EQ(KindOf("凭证模板"), TokenKind::kIdentifier);
    EXPECT_EQ(KindOf("F编号_1"), TokenKind::kIdentifier);
    EXPECT_EQ(KindOf("[a ]] b]"), TokenKind::kQuotedIdentifier);
    EXPECT_EQ(KindOf("\"a \"\" b\""), TokenKind::kQuotedIdentifier);
    EXPECT_EQ(KindOf("@变量"), TokenKind::kVariable);
    EXPECT_EQ(KindOf("@@fetch_status"), TokenKind::kVariable);
}

TEST(LexerTest, KnowsReservedWordsInAnyCase) {
    EXPECT_EQ(Lex("SELECT")[0].keyword, Keyword::kSelect);
    EXPECT_EQ(Lex("sElEcT")[0].keyword, Keyword::kSelect);
    EXPECT_EQ(Lex("current_timestamp")[0].keyword, Keyword::kCurrentTimestamp);
    EXPECT_EQ(Lex("selec")[0].keyword, Keyword::kNone);
    EXPECT_EQ(Lex("selects")[0].keyword, Keyword::kNone);
    EXPECT_EQ(Lex("[select]")[0].keyword, Keyword::kNone);
    EXPECT_EQ(Lex("output")[0].keyword, Keyword::kNone);
    EXPECT_EQ(Lex("a")[0].keyword, Keyword::kNone);
}

TEST(LexerTest, UndoesQuotes) {
    EXPECT_EQ(TokenValue(Lex("'it''s'")[0]), "it's");
    EXPECT_EQ(TokenValue(Lex("N'凭''证'")[0]), "凭'证");
    EXPECT_EQ(TokenValue(Lex("''")[0]), "");
    EXPECT_EQ(TokenValue(Lex("''''")[0]), "'");
    EXPECT_EQ(TokenValue(Lex("n''")[0]), "");
    EXPECT_EQ(TokenValue(Lex("[a]]b]")[0]), "a]b");
    EXPECT_EQ(TokenValue(Lex("\"a\"\"b\"")[0]), "a\"b");
    EXPECT_EQ(TokenValue(Lex("$12.5")[0]), "12.5");
    EXPECT_EQ(TokenValue(Lex("0xAb")[0]), "Ab");
    EXPECT_EQ(QuoteString("it's", false), "'it''s'");
    EXPECT_EQ(QuoteString("", true), "N''");
}

TEST(LexerTest, KeepsLineBreaksAndCommentMarksInTexts) {
    EXPECT_EQ(TokenValue(Lex("'a\r\nb -- c /* d'")[0]), "a\r\nb -- c /* d");
    EXPECT_EQ(Texts("'--' + '/*'"), (Strings{"'--'", "+", "'/*'"}));
}

TEST(LexerTest, TellsNumbersApart) {
    EXPECT_EQ(KindOf("12"), TokenKind::kInteger);
    EXPECT_EQ(KindOf("12."), TokenKind::kDecimal);
    EXPECT_EQ(KindOf(".5"), TokenKind::kDecimal);
    EXPECT_EQ(KindOf("1.50"), TokenKind::kDecimal);
    EXPECT_EQ(KindOf("1e5"), TokenKind::kFloat);
    EXPECT_EQ(KindOf("1.5E-3"), TokenKind::kFloat);
    EXPECT_EQ(KindOf("1e"), TokenKind::kFloat);
    EXPECT_EQ(KindOf("$1.5"), TokenKind::kMoney);
    EXPECT_EQ(KindOf("0xFF"), TokenKind::kBinary);
    EXPECT_EQ(KindOf("0x"), TokenKind::kBinary);
    EXPECT_EQ(Texts("1a"), (Strings{"1", "a"}));
    EXPECT_EQ(Texts("1else"), (Strings{"1", "else"}));
    EXPECT_EQ(Texts("1-2"), (Strings{"1", "-", "2"}));
    EXPECT_EQ(Texts("a.1"), (Strings{"a", ".1"}));
}

TEST(LexerTest, ReadsOperatorsLongestFirst) {
    EXPECT_EQ(Texts("a<>b!=c<=d>=e!<f!>g<h"),
              (Strings{"a", "<>", "b", "!=", "c", "<=", "d", ">=", "e", "!<", "f", "!>", "g", "<", "h"}));
    EXPECT_EQ(Lex("!<")[0].op, Op::kGreaterEqual);
    EXPECT_EQ(Lex("!>")[0].op, Op::kLessEqual);
    EXPECT_EQ(Texts("@a+=1 @b|=2 ^= %="), (Strings{"@a", "+=", "1", "@b", "|=", "2", "^=", "%="}));
    EXPECT_EQ(Lex("!")[0].kind, TokenKind::kUnknown);
}

TEST(LexerTest, SkipsCommentsThatNest) {
    EXPECT_EQ(Texts("a/* b /* c */ d */e--f\n-g"), (Strings{"a", "e", "-", "g"}));
    EXPECT_EQ(Texts("/**/a/***/"), (Strings{"a"}));
    EXPECT_EQ(Texts("--"), Strings{});
    EXPECT_EQ(Texts("/* ' */a"), Strings{"a"});
}

TEST(LexerTest, CountsLinesThroughTextsAndComments) {
    const std::vector<Token> tokens = Lex("a\r\n /* x\n y */ 'p\nq' b\n\tc");
    ASSERT_EQ(tokens.size(), 4U);
    EXPECT_EQ(tokens[0].position, (Position{0, 1, 1}));
    EXPECT_EQ(tokens[1].position, (Position{15, 3, 7}));
    EXPECT_EQ(tokens[2].position, (Position{21, 4, 4}));
    EXPECT_EQ(tokens[3].position, (Position{24, 5, 2}));
}

TEST(LexerTest, GoesOnFromAnyPosition) {
    const std::string text = "select 1\n  select 2";
    Lexer first(text);
    first.Next();
    first.Next();
    Lexer second(text, first.Where());
    const Token token = second.Next();
    EXPECT_EQ(token.text, "select");
    EXPECT_EQ(token.position, (Position{11, 2, 3}));
}

TEST(LexerTest, RefusesFullWidthPunctuation) {
    EXPECT_EQ(KindOf("，"), TokenKind::kUnknown);
    EXPECT_EQ(KindOf("　"), TokenKind::kUnknown);
    EXPECT_EQ(Texts("a，b"), (Strings{"a", "，", "b"}));
}

TEST(LexerTest, SurvivesBrokenUtf8) {
    EXPECT_EQ(KindOf("\xFF"), TokenKind::kUnknown);
    EXPECT_EQ(Texts("a\xE5\x87"), (Strings{"a", "\xE5", "\x87"}));
    EXPECT_EQ(KindOf("'\xFF\xC0'"), TokenKind::kString);
}

void ExpectError(std::string_view text, std::int32_t number, std::string_view message, std::int32_t line) {
    try {
        Lex(text);
        FAIL() << "no error: " << text;
    } catch (const SqlError& error) {
        EXPECT_EQ(error.Details().number, number);
        EXPECT_EQ(error.Details().text, message);
        EXPECT_EQ(error.Details().line, line);
    }
}

TEST(LexerTest, ReportsAnOpenTextWhereItStarts) {
    ExpectError("select\n'abc", 105, "Unclosed quotation mark after the character string 'abc'.", 2);
    ExpectError("'it''s", 105, "Unclosed quotation mark after the character string 'it''s'.", 1);
    ExpectError("[abc", 105, "Unclosed quotation mark after the character string 'abc'.", 1);
    ExpectError("'", 105, "Unclosed quotation mark after the character string ''.", 1);
}

TEST(LexerTest, ReportsAnOpenComment) {
    ExpectError("select 1\n/* a /* b */", 113, "Missing end comment mark '*/'.", 2);
    ExpectError("/*/", 113, "Missing end comment mark '*/'.", 1);
}

// Not a benchmark: guards against a token costing more than the length of its text.
TEST(LexerTest, LexesALongBatchInLinearTime) {
    std::string row = "insert into t(FID,FEntryID,FExp,FAmount) values(1,2,'摘要',100.25)\r\n";
    std::string text;
    while (text.size() < 4'000'000)
        text += row;
    Lexer lexer(text);
    std::size_t count = 0;
    while (lexer.Next().kind != TokenKind::kEnd)
        ++count;
    EXPECT_EQ(count, 22 * (text.size() / row.size()));
}

}  // namespace
}  // namespace vicenter::tsql
