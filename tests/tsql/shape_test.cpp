#include "tsql/syntax/shape.h"

#include <gtest/gtest.h>

#include "tsql/syntax/literal_template.h"
#include "tsql/syntax/parse/parser.h"
#include "tsql/types/literal_value.h"

namespace vicenter::tsql {
namespace {

// The literals as "kind:text" joined by blanks; "-" when there is no match.
std::string Describe(const std::vector<LiteralValue>& literals) {
    std::string result;
    for (const LiteralValue& literal : literals) {
        if (!result.empty()) result += ' ';
        switch (literal.kind) {
            case LiteralKind::kNull:
                result += "null";
                continue;
            case LiteralKind::kInteger:
                result += "int:";
                break;
            case LiteralKind::kDecimal:
                result += "dec:";
                break;
            case LiteralKind::kFloat:
                result += "float:";
                break;
            case LiteralKind::kString:
                result += "str:";
                break;
            case LiteralKind::kNString:
                result += "nstr:";
                break;
            case LiteralKind::kBinary:
                result += "bin:";
                break;
            default:
                result += "?:";
                break;
        }
        if (literal.negative) result += '-';
        result += literal.Text();
    }
    return result;
}

std::string Match(std::string_view first, std::string_view next) {
    const std::optional<LiteralTemplate> made = LiteralTemplate::Make(first);
    if (!made) return "no template";
    std::vector<LiteralValue> literals;
    const auto end = made->Match(next, 0, &literals);
    return end ? Describe(literals) : "-";
}

TEST(LiteralTemplateTest, FindsTheLiteralsOfTheNextInsert) {
    EXPECT_EQ(Match("insert into t(a,b,c) values(1,'x',1.5)", "insert into t(a,b,c) values(27,'y''s',0.25)"),
              "int:27 str:y's dec:0.25");
    EXPECT_EQ(Match("insert into t values(1)", "\r\n ; insert into t values(2) \r\ninsert into t values(3)"),
              "int:2");
}

TEST(LiteralTemplateTest, TakesLiteralsOfOtherKinds) {
    const char* first = "insert t values(1, 2, 3)";
    EXPECT_EQ(Match(first, "insert t values(N'a', Null, 1e5)"), "nstr:a null float:1e5");
    EXPECT_EQ(Match(first, "insert t values('', -5, -.5)"), "str: int:-5 dec:-.5");
    EXPECT_EQ(Match(first, "insert t values(0xAB, 5., 0)"), "bin:AB dec:5. int:0");
    EXPECT_EQ(Match("insert t values(-1, null)", "insert t values(1, -1)"), "int:1 int:-1");
}

TEST(LiteralTemplateTest, RefusesAnythingButLiteralsBetween) {
    const char* first = "insert t values(1, 2)";
    EXPECT_EQ(Match(first, "insert t values(1, @a)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1, default)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1, nullx)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1, 2, 3)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1, 1+1)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1, 1 )"), "-");
    EXPECT_EQ(Match(first, "insert t values(1, --5)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1, - 5)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1, 1a)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1, 1e)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1, 1.2.3)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1, 'abc)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1, $5)"), "-");
    EXPECT_EQ(Match(first, "insert T values(1, 2)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1, "), "-");
    EXPECT_EQ(Match(first, ""), "-");
}

TEST(LiteralTemplateTest, LooksAtWhatFollows) {
    const char* first = "insert t values(1)";
    EXPECT_EQ(Match(first, "insert t values(1)"), "int:1");
    EXPECT_EQ(Match(first, "insert t values(1);"), "int:1");
    EXPECT_EQ(Match(first, "insert t values(1) \t\r\n"), "int:1");
    EXPECT_EQ(Match(first, "insert t values(1)select 1"), "int:1");
    EXPECT_EQ(Match(first, "insert t values(1)\nDELETE t"), "int:1");
    EXPECT_EQ(Match(first, "insert t values(1),(2)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1) option (recompile)"), "-");
    EXPECT_EQ(Match(first, "insert t values(1) selects"), "-");
    EXPECT_EQ(Match(first, "insert t values(1) end"), "-");
    EXPECT_EQ(Match(first, "insert t values(1) -- x"), "-");
    EXPECT_EQ(Match("select a from t where b = 1", "select a from t where b = 2 or c = 3"), "-");
    EXPECT_EQ(Match("select a from t where b = 1", "select a from t where b = 2 order by a"), "-");
    EXPECT_EQ(Match("select a from t where b = 1", "select a from t where b = 22"), "int:22");
    EXPECT_EQ(Match("select a from t where b = 1 order by a", "select a from t where b = 2 order by ab"),
              "-");
    EXPECT_EQ(Match("if 1 = 1 select 2", "if 1 = 1 select 3 else select 4"), "-");
    EXPECT_EQ(Match("exec p 1", "exec p 2\r\n"), "int:2");
    EXPECT_EQ(Match("exec p 1", "exec p 2, 3"), "-");
}

TEST(LiteralTemplateTest, GivesTheOffsetsOfStatementAndLiterals) {
    const auto made = LiteralTemplate::Make("insert t values(1, 'a')");
    ASSERT_TRUE(made);
    const std::string_view text = "insert t values(1, 'a')\r\ninsert t values(-20, N'b') select 1";
    std::vector<LiteralValue> literals;
    std::uint32_t start = 0;
    const auto end = made->Match(text, 23, &literals, &start);
    ASSERT_TRUE(end);
    EXPECT_EQ(start, 25U);
    EXPECT_EQ(text.substr(start, *end - start), "insert t values(-20, N'b')");
    EXPECT_EQ(literals[0].offset, 42U);  // behind the sign
    EXPECT_EQ(literals[1].offset, 46U);
    EXPECT_EQ(Advance(text, Position{}, start), (Position{25, 2, 1}));
    EXPECT_EQ(Advance(text, Position{25, 2, 1}, 46), (Position{46, 2, 22}));
}

TEST(LiteralTemplateTest, KeepsWhatIsNoValue) {
    EXPECT_EQ(Match("select top 1 a from t where b = 2", "select top 5 a from t where b = 2"), "-");
    EXPECT_EQ(Match("select top (1) a from t where b = 2", "select top (5) a from t where b = 2"), "-");
    EXPECT_EQ(Match("select a from t where b = 2 order by 1", "select a from t where b = 2 order by 2"), "-");
    EXPECT_EQ(Match("select cast(a as varchar(10)) from t where b = 2",
                    "select cast(a as varchar(20)) from t where b = 2"),
              "-");
    EXPECT_EQ(Match("select a 'x' from t where b = 2", "select a 'y' from t where b = 2"), "-");
    EXPECT_EQ(Match("select a as 'x' from t where b = 2", "select a as 'y' from t where b = 2"), "-");
    EXPECT_EQ(Match("select 'x' = a from t where b = 2", "select 'y' = a from t where b = 2"), "-");
    EXPECT_EQ(Match("select a from t where b is null and c = 1", "select a from t where b is null and c = 3"),
              "int:3");
    EXPECT_EQ(Match("select a from t where b is null and c = 1", "select a from t where b is 5 and c = 3"),
              "-");
}

TEST(LiteralTemplateTest, TakesASubtractionForNoSign) {
    EXPECT_EQ(Match("select a -1 from t where b = 2", "select a -5 from t where b = 2"), "int:5 int:2");
    EXPECT_EQ(Match("select a -1 from t where b = 2", "select a --5 from t where b = 2"), "-");
    EXPECT_EQ(Match("select a-1 from t where b = 2", "select a5 from t where b = 2"), "-");
}

TEST(LiteralTemplateTest, HandlesCommentsAsText) {
    EXPECT_EQ(Match("insert t /* 1 */ values(1)", "insert t /* 1 */ values(2)"), "int:2");
    EXPECT_EQ(Match("insert t /* 1 */ values(1)", "insert t /* 2 */ values(2)"), "-");
    EXPECT_EQ(Match("insert t -- it's\n values(1)", "insert t -- it's\n values('x')"), "str:x");
}

TEST(LiteralTemplateTest, MakesNoneOfOtherStatements) {
    EXPECT_FALSE(LiteralTemplate::Make("create table t(a int default 5)"));
    EXPECT_FALSE(LiteralTemplate::Make("declare @a int = 5"));
    EXPECT_FALSE(LiteralTemplate::Make("select a from t"));
    EXPECT_FALSE(LiteralTemplate::Make("insert t values('abc"));
    EXPECT_FALSE(LiteralTemplate::Make(" insert t values(1)"));
    EXPECT_FALSE(LiteralTemplate::Make(""));
    EXPECT_FALSE(LiteralTemplate::Make("select'a'b"));
    EXPECT_FALSE(LiteralTemplate::Make("insert t values(1) -- x"));
}

// Whatever a template matches, the parser must read the same: the same end, the same literals.
TEST(LiteralTemplateTest, AgreesWithTheParser) {
    const std::vector<std::string> values = {
        "1",    "-1",   "''",     "'a''b'", "N'凭证'", "null", "1.5", "-.5", "5.",
        "1e5",  "0xFF", "'--'",   "'/*'",   "'\r\n'",  "1a",   "1e",  "--1", "- 1",
        "$1",   "@a",   "'",      "null1",  "1.2.3",   "0x1G", "1 ",  "(1)", "default",
        "'a'b", "N",    "/*x*/1", "1e+5",   "1.e5",    "''''", "nUlL"};
    const std::vector<std::string> tails = {
        "", ";", "\r\nselect 1", " option(recompile)", "/* x", " -- x", "select 1", " go1", ",(1,2)"};
    for (const std::string& first : values) {
        const std::string statement = "insert into t(a,b) values(" + first + ", 2)";
        const auto made = LiteralTemplate::Make(statement);
        if (!made) continue;
        for (const std::string& value : values) {
            for (const std::string& tail : tails) {
                const std::string text = "insert into t(a,b) values(" + value + ", 3)" + tail;
                std::vector<LiteralValue> literals;
                const auto end = made->Match(text, 0, &literals);
                if (!end) continue;
                StatementReader reader(text);
                StatementPtr parsed;
                ASSERT_NO_THROW(parsed = reader.Next()) << text;
                EXPECT_EQ(parsed->endOffset, *end) << text;
                const auto& insert = As<InsertStatement>(*parsed);
                ASSERT_EQ(insert.rows.size(), 1U);
                const Expr* shown = insert.rows[0][literals.size() == 2 ? 0 : 1].get();
                const LiteralValue& literal = literals[0];
                if (const auto* unary = TryAs<UnaryExpr>(shown)) {
                    // "- 1" as the template has it: its sign is part of the text between.
                    EXPECT_TRUE(literal.negative || value == "- 1") << text;
                    shown = unary->operand.get();
                }
                const auto& node = As<LiteralExpr>(*shown);
                EXPECT_EQ(node.literal, literal.kind) << text;
                EXPECT_EQ(node.text, literal.Text()) << text;
                EXPECT_EQ(node.position.offset, literal.offset) << text;
            }
        }
    }
}

std::string KeyOf(std::string_view text) {
    const auto shape = ShapeOf(text);
    return shape ? shape->key : "none";
}

TEST(StatementShapeTest, IsTheSameForOtherValues) {
    EXPECT_EQ(KeyOf("select * from t where a = 'xx' and b = 1"),
              KeyOf("select * from t where a = 'yy' and b = 23"));
    EXPECT_EQ(KeyOf("select * from t where a = 'it''s'"), KeyOf("select * from t where a = '凭证模板'"));
    EXPECT_NE(KeyOf("select * from t where a = 'x'"), KeyOf("select * from t where a = 'yy'"));
    EXPECT_NE(KeyOf("select * from t where a = 'x'"), KeyOf("select * from t where a = N'x'"));
    EXPECT_NE(KeyOf("select * from t where a = 1"), KeyOf("select * from t where a = 3000000000"));
    EXPECT_EQ(KeyOf("select * from t where a = 1"), KeyOf("select * from t where a = 2147483647"));
    EXPECT_NE(KeyOf("select * from t where a = 1"), KeyOf("select * from t where a = 2147483648"));
    EXPECT_NE(KeyOf("select * from t where a = 1.5"), KeyOf("select * from t where a = 1.50"));
    EXPECT_NE(KeyOf("select * from t where a = 1"), KeyOf("select * from t where b = 1"));
    EXPECT_NE(KeyOf("select * from t where a = null"), KeyOf("select * from t where a = 1"));
}

// A plan is made for the types of its literals, and found again by the key.
TEST(StatementShapeTest, EqualKeysMeanEqualTypes) {
    const std::vector<std::string> values = {
        "0",       "1",           "007",          "2147483647", "02147483647", "2147483648", "3000000000",
        "00",      "99999999999", "099999999999", "0.5",        "1.5",         "01.5",       ".5",
        "5.",      "10.50",       "0.00",         "00.00",      "1e5",         ".5e-3",      "0x",
        "0xF",     "0xFF",        "0xFFF",        "''",         "'a'",         "'ab'",       "''''",
        "'it''s'", "'四个字符'",  "'𠮷'",         "'abcd'",     "N''",         "N'a'",       "N'ab'",
        "N''''",   "N'凭证'",     "'1001'",       "'1002.01'",  "null",        "1000000000", "' '"};
    int equalPairs = 0;
    for (const std::string& a : values) {
        for (const std::string& b : values) {
            const std::string firstText = "select x from t where y = " + a;
            const std::string secondText = "select x from t where y = " + b;
            const auto first = ShapeOf(firstText);
            const auto second = ShapeOf(secondText);
            ASSERT_TRUE(first && second) << a << " " << b;
            ASSERT_EQ(first->literals.size(), 1U) << a;
            if (first->key != second->key) continue;
            if (a != b) ++equalPairs;
            const LiteralValue& left = first->literals.front();
            const LiteralValue& right = second->literals.front();
            EXPECT_EQ(engine::LiteralType(left.kind, left.Text()),
                      engine::LiteralType(right.kind, right.Text()))
                << a << " " << b;
        }
    }
    EXPECT_GT(equalPairs, 20);
}

TEST(StatementShapeTest, KeepsWhatIsNoValue) {
    EXPECT_NE(KeyOf("select top 1 a from t"), KeyOf("select top 2 a from t"));
    EXPECT_NE(KeyOf("select a from t order by 1"), KeyOf("select a from t order by 2"));
    EXPECT_NE(KeyOf("select convert(varchar(10), a) from t"), KeyOf("select convert(varchar(20), a) from t"));
    EXPECT_NE(KeyOf("select convert(varchar (10), a) from t"),
              KeyOf("select convert(varchar (20), a) from t"));
    EXPECT_NE(KeyOf("select 1 'x'"), KeyOf("select 1 'y'"));
    EXPECT_NE(KeyOf("select sum(a) from t group by b + 1"), KeyOf("select sum(a) from t group by b + 2"));
}

TEST(StatementShapeTest, GivesLiteralsInOrderWithTheirOffsets) {
    const std::string_view text = "select isnull(a, 'it''s') from t where b in (1, 2) and c = -3 -- 5";
    const auto shape = ShapeOf(text);
    ASSERT_TRUE(shape);
    EXPECT_EQ(Describe(shape->literals), "str:it's int:1 int:2 int:3");
    for (const LiteralValue& literal : shape->literals)
        EXPECT_NE(text[literal.offset], ' ');
}

TEST(StatementShapeTest, HasNoneForOtherTexts) {
    EXPECT_FALSE(ShapeOf("create table t(a int)"));
    EXPECT_FALSE(ShapeOf("select 'abc"));
    EXPECT_FALSE(ShapeOf("select '\x01i\x01'"));
    EXPECT_FALSE(ShapeOf(""));
    EXPECT_FALSE(ShapeOf("select '" + std::string(kLongestShape, 'x') + "'"));
    EXPECT_TRUE(ShapeOf("select 1"));
    EXPECT_TRUE(ShapeOf("declare @a int = 5 select @a"));
}

TEST(StatementShapeTest, HasNoneForDefinitions) {
    EXPECT_FALSE(ShapeOf("if 1 = 1 create table t(a int default (5))"));
    EXPECT_FALSE(ShapeOf("if 1 = 1 alter table t add a int default (5)"));
    EXPECT_FALSE(ShapeOf("select 1 declare @t table(a int check (a > 5))"));
    EXPECT_FALSE(ShapeOf("declare @t as table(a int check (a > 5))"));
    EXPECT_TRUE(ShapeOf("select 1 as a into #t drop table #t"));
}

}  // namespace
}  // namespace vicenter::tsql
