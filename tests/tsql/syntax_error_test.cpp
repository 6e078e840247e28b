#include <gtest/gtest.h>

#include "tsql/base/diagnostic.h"
#include "tsql/syntax/parse/parser.h"

namespace vicenter::tsql {
namespace {

// "number line:column text", or "no error".
std::string ErrorOf(std::string_view text) {
    try {
        ParseBatch(text);
        return "no error";
    } catch (const SqlError& error) {
        const Diagnostic& d = error.Details();
        return std::to_string(d.number) + ' ' + std::to_string(d.line) + ':' + std::to_string(d.column) +
               ' ' + d.text;
    }
}

TEST(SyntaxErrorTest, NamesTheWordItStumblesOver) {
    EXPECT_EQ(ErrorOf("select a b c"), "102 1:12 Incorrect syntax near 'c'.");
    EXPECT_EQ(ErrorOf("selec 1,"), "102 1:8 Incorrect syntax near ','.");
    EXPECT_EQ(ErrorOf("select 1\r\nfrm t"), "102 2:5 Incorrect syntax near 't'.");
    EXPECT_EQ(ErrorOf("select 1\nselect 2\nfoo 3"), "102 3:5 Incorrect syntax near '3'.");
    EXPECT_EQ(ErrorOf("insert into t values (1 2)"), "102 1:25 Incorrect syntax near '2'.");
    EXPECT_EQ(ErrorOf("select * from t where a = 'x' 'y z'"), "102 1:31 Incorrect syntax near 'y z'.");
    EXPECT_EQ(ErrorOf("select @a @b"), "102 1:11 Incorrect syntax near '@b'.");
    EXPECT_EQ(ErrorOf("select a，b"), "102 1:9 Incorrect syntax near '，'.");
}

TEST(SyntaxErrorTest, NamesReservedWordsAsSuch) {
    EXPECT_EQ(ErrorOf("select * from where"), "156 1:15 Incorrect syntax near the keyword 'where'.");
    EXPECT_EQ(ErrorOf("Select From t"), "156 1:8 Incorrect syntax near the keyword 'From'.");
    EXPECT_EQ(ErrorOf("create table t (order int)"), "156 1:17 Incorrect syntax near the keyword 'order'.");
    EXPECT_EQ(ErrorOf("begin end"), "156 1:7 Incorrect syntax near the keyword 'end'.");
    EXPECT_EQ(ErrorOf("update t where a = 1"), "156 1:10 Incorrect syntax near the keyword 'where'.");
}

TEST(SyntaxErrorTest, PointsAtTheLastWordWhenTheTextEnds) {
    EXPECT_EQ(ErrorOf("select * from"), "102 1:10 Incorrect syntax near 'from'.");
    EXPECT_EQ(ErrorOf("begin\nselect 1"), "102 2:8 Incorrect syntax near '1'.");
    EXPECT_EQ(ErrorOf("select (1 + 2"), "102 1:13 Incorrect syntax near '2'.");
    EXPECT_EQ(ErrorOf("insert into t values ('abc'"), "102 1:23 Incorrect syntax near 'abc'.");
}

TEST(SyntaxErrorTest, TellsValuesAndConditionsApart) {
    EXPECT_EQ(ErrorOf("select 1 where a"),
              "4145 1:16 An expression of non-boolean type specified in a context where a condition is "
              "expected, near "
              "'a'.");
    EXPECT_EQ(ErrorOf("if 1 select 2"),
              "4145 1:6 An expression of non-boolean type specified in a context where a condition is "
              "expected, near "
              "'select'.");
    EXPECT_EQ(ErrorOf("select 1 from t where a = 1 and b order by c"),
              "4145 1:35 An expression of non-boolean type specified in a context where a condition is "
              "expected, near "
              "'order'.");
    EXPECT_EQ(ErrorOf("select (a = 1)"), "102 1:11 Incorrect syntax near '='.");
    EXPECT_EQ(ErrorOf("select 1 where (a = 1) + 2 = 3"), "102 1:24 Incorrect syntax near '+'.");
    EXPECT_EQ(ErrorOf("select 1 where ((a + 1) * 2) > 3 and ((b = 1))"), "no error");
}

TEST(SyntaxErrorTest, CountsValuesOfInsert) {
    EXPECT_EQ(ErrorOf("insert into t(a,b) values(1)").substr(0, 60),
              "109 1:1 There are more columns in the INSERT statement than ");
    EXPECT_EQ(ErrorOf("insert into t(a) values(1,2)").substr(0, 60),
              "110 1:1 There are fewer columns in the INSERT statement than");
    EXPECT_EQ(ErrorOf("insert into t values(1,2),(3)"),
              "10709 1:1 The number of columns for each row in a table value constructor must be the same.");
}

TEST(SyntaxErrorTest, KeepsBreakAndReturnInTheirPlaces) {
    EXPECT_EQ(ErrorOf("break"),
              "135 1:1 Cannot use a BREAK statement outside the scope of a WHILE statement.");
    EXPECT_EQ(ErrorOf("if 1=1 continue"),
              "136 1:8 Cannot use a CONTINUE statement outside the scope of a WHILE statement.");
    EXPECT_EQ(ErrorOf("while 1=1 begin if 1=1 break else continue end"), "no error");
    EXPECT_EQ(ErrorOf("return 1"),
              "178 1:8 A RETURN statement with a return value cannot be used in this context.");
    EXPECT_EQ(ErrorOf("create procedure p as return 1"), "no error");
    EXPECT_EQ(ErrorOf("return\nselect 1"), "no error");
}

TEST(SyntaxErrorTest, KeepsProceduresAndViewsAtTheStart) {
    EXPECT_EQ(ErrorOf("select 1\ncreate procedure p as select 1"),
              "111 2:1 'CREATE/ALTER PROCEDURE' must be the first statement in a query batch.");
    EXPECT_EQ(ErrorOf("select 1\ncreate view v as select 1 a"),
              "111 2:1 'CREATE VIEW' must be the first statement in a query batch.");
    EXPECT_EQ(ErrorOf("if 1=1 create proc p as select 1"),
              "156 1:15 Incorrect syntax near the keyword 'proc'.");
    EXPECT_EQ(ErrorOf("create view v as select 1 a select 2"),
              "156 1:29 Incorrect syntax near the keyword 'select'.");
    EXPECT_EQ(ErrorOf("create procedure p as"), "102 1:20 Incorrect syntax near 'as'.");
}

TEST(SyntaxErrorTest, MixesNoAssignmentsWithResults) {
    EXPECT_EQ(ErrorOf("select @a = 1, 2"),
              "141 1:1 A SELECT statement that assigns a value to a variable must not be combined with "
              "data-retrieval "
              "operations.");
    EXPECT_EQ(ErrorOf("select 1 where 1 = (select @a = 2)"), "102 1:31 Incorrect syntax near '='.");
}

TEST(SyntaxErrorTest, SortsNoNestedQueryWithoutTop) {
    EXPECT_EQ(ErrorOf("select * from (select a from t order by a) b").substr(0, 9), "1033 1:32");
    EXPECT_EQ(ErrorOf("select * from (select top 1 a from t order by a) b"), "no error");
    EXPECT_EQ(ErrorOf("select a from t where b in (select c from u order by c)").substr(0, 4), "1033");
    EXPECT_EQ(ErrorOf("create view v as select a from t order by a").substr(0, 4), "1033");
    EXPECT_EQ(ErrorOf("insert into t select a from u order by a"), "no error");
}

TEST(SyntaxErrorTest, PassesArgumentsByNameToTheEnd) {
    EXPECT_EQ(ErrorOf("exec p 1, @a = 2, 3").substr(0, 8), "119 1:19");
    EXPECT_EQ(ErrorOf("exec p 1 + 1"), "102 1:10 Incorrect syntax near '+'.");
}

TEST(SyntaxErrorTest, RefusesBracesThatAreNothingHere) {
    const std::string behind = "}' is not supported by the embedded account set.";
    EXPECT_EQ(ErrorOf("select {interval '1'} as y"), "40510 1:9 Statement '{interval " + behind);
    EXPECT_EQ(ErrorOf("{call sp_help}"), "40510 1:1 Statement '{call " + behind);
    EXPECT_EQ(ErrorOf("{? = call p(1)}"), "40510 1:1 Statement '{call " + behind);
    EXPECT_EQ(ErrorOf("select {ts '20260101'"), "102 1:12 Incorrect syntax near '20260101'.");
}

TEST(SyntaxErrorTest, BoundsNesting) {
    const std::string message =
        "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller "
        "queries.";
    const auto repeated = [](std::string_view part, int times) {
        std::string text;
        for (int i = 0; i < times; ++i)
            text += part;
        return text;
    };
    const std::vector<std::string> deep = {
        "select " + repeated("(", 5000) + "1",
        "select " + repeated("-", 1) + repeated(" -", 5000) + "1",
        "select " + repeated("~", 5000) + "1",
        "select 1" + repeated(" + 1", 5000),
        "select 1 where " + repeated("not ", 5000) + "1 = 1",
        "select " + repeated("f(", 5000),
        "select " + repeated("case when 1 = 1 then ", 5000),
        "select * from " + repeated("(select * from ", 5000),
        "select 1 where 1 in " + repeated("(select 1 where 1 in ", 5000),
        repeated("begin ", 5000) + "select 1",
        repeated("if 1 = 1 ", 5000) + "select 1",
        repeated("if 1 = 1 select 1 else ", 5000) + "select 1",
        repeated("while 1 = 1 ", 5000) + "select 1",
        "select * from t" + repeated(" cross join t", 5000),
        "select a " + repeated("collate x ", 5000),
        repeated("(", 5000) + "select 1",
    };
    for (const std::string& text : deep) {
        const std::string error = ErrorOf(text);
        EXPECT_EQ(error.substr(0, 4), "191 ") << text.substr(0, 40) << error;
        EXPECT_NE(error.find(message), std::string::npos);
    }
}

TEST(SyntaxErrorTest, TakesLongFlatTexts) {
    std::string conditions = "select 1 where a = 0";
    std::string list = "select 1 where a in (0";
    std::string unions = "select 0";
    for (int i = 1; i < 5000; ++i) {
        conditions += (i % 2 ? " or a = " : " and a = ") + std::to_string(i);
        list += "," + std::to_string(i);
        unions += " union all select " + std::to_string(i);
    }
    EXPECT_EQ(ErrorOf(conditions), "no error");
    EXPECT_EQ(ErrorOf(list + ")"), "no error");
    EXPECT_EQ(ErrorOf(unions), "no error");
}

TEST(SyntaxErrorTest, RefusesLongNames) {
    EXPECT_EQ(ErrorOf("select 1 as " + std::string(128, 'a')), "no error");
    EXPECT_EQ(ErrorOf("select 1 as " + std::string(129, 'a')), "103 1:13 The identifier that starts with '" +
                                                                   std::string(128, 'a') +
                                                                   "' is too long. Maximum length is 128.");
    EXPECT_EQ(ErrorOf("select * from a.b.c.d.e"),
              "117 1:15 The object name 'a.b.c.d.e' contains more than the maximum number of prefixes. The "
              "maximum is "
              "3.");
}

TEST(SyntaxErrorTest, KnowsItsSetOptions) {
    EXPECT_EQ(ErrorOf("set nocount, xact_abort on"), "no error");
    EXPECT_EQ(ErrorOf("set noncount on"), "195 1:5 'noncount' is not a recognized SET option.");
}

TEST(SyntaxErrorTest, SurvivesEveryTruncation) {
    const std::string text =
        "declare @c cursor set @c = cursor for select distinct a, [b c] from t x left join (values "
        "(1,'a''b')) v(p, q) "
        "on x.a = v.p where a like N'凭%' escape '!' and not exists (select 1) /* c */ order by a -- "
        "d\nfetch next from "
        "@c into @x while @@fetch_status = 0 begin update t set a += 0x1F, b = case when a > $1 then 1e5 end "
        "end";
    for (std::size_t length = 0; length < text.size(); ++length) {
        try {
            ParseBatch(std::string_view(text).substr(0, length));
        } catch (const SqlError&) {
        }
        try {
            ParseBatch(std::string_view(text).substr(length));
        } catch (const SqlError&) {
        }
    }
}

}  // namespace
}  // namespace vicenter::tsql
