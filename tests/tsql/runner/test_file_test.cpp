#include "runner/test_file.h"

#include <memory>

#include <gtest/gtest.h>

#include "runner/result_text.h"

namespace vicenter::tsql_test {
namespace {

using automation::Decimal;
using automation::Variant;
using Strings = std::vector<std::string>;

TEST(TestFileTest, ReadsBatchesErrorsAndExpectations) {
    const TestFile file = ParseTestFile(
        "# name: a/b.test\n# by hand\n# setup: x.sql\n# covers: while, "
        "break\n\nbatch\nselect 1\n\nselect "
        "2\ngo\n"
        "----\n:int\n1\n\n:int\n2\n\n---- over ODBC: as is\n:int\n1\n\nerror 208 line 3\nselect * from "
        "t\nGO\n----\nInvalid.\n");
    EXPECT_EQ(file.name, "a/b.test");
    EXPECT_EQ(file.setup, Strings{"x.sql"});
    EXPECT_EQ(file.covers, (Strings{"while", "break"}));
    ASSERT_EQ(file.steps.size(), 2U);
    EXPECT_EQ(file.steps[0].batch, "select 1\n\nselect 2\n");
    EXPECT_EQ(file.steps[0].expected, (Strings{":int", "1", "", ":int", "2"}));
    EXPECT_EQ(file.steps[0].overOdbcWhy, "as is");
    EXPECT_EQ(file.steps[0].expectedOverOdbc, (Strings{":int", "1"}));
    EXPECT_EQ(file.steps[1].overOdbcWhy, "");
    EXPECT_EQ(file.steps[0].line, 6);
    EXPECT_FALSE(file.steps[0].errorNumber);
    EXPECT_EQ(file.steps[1].errorNumber, 208);
    EXPECT_EQ(file.steps[1].errorLine, 3);
    EXPECT_EQ(file.steps[1].expected, Strings{"Invalid."});
}

TEST(TestFileTest, RefusesWhatIsNoTest) {
    EXPECT_THROW(ParseTestFile(""), std::runtime_error);
    EXPECT_THROW(ParseTestFile("# name: x\n"), std::runtime_error);
    EXPECT_THROW(ParseTestFile("# name: x\nfoo\n"), std::runtime_error);
    EXPECT_THROW(ParseTestFile("# name: x\nbatch\nselect 1\n"), std::runtime_error);
    EXPECT_THROW(ParseTestFile("# name: x\nbatch\nselect 1\ngo\n----\n---- over ODBC:\n"),
                 std::runtime_error);
    EXPECT_THROW(ParseTestFile("# name: x\nbatch\nselect 1\ngo\nselect 2\n"), std::runtime_error);
}

TEST(TestFileTest, SplitsScriptsAtGo) {
    EXPECT_EQ(SplitScript("a\nGO\n\n  go  \nb\ngone\n"), (Strings{"a\n", "b\ngone\n"}));
    EXPECT_EQ(SplitScript("").size(), 0U);
}

TEST(ResultTextTest, WritesValuesUnmistakably) {
    EXPECT_EQ(CellText(Variant::Null()), "NULL");
    EXPECT_EQ(CellText(Variant("")), "(empty)");
    EXPECT_EQ(CellText(Variant("NULL")), "\"NULL\"");
    EXPECT_EQ(CellText(Variant("a ")), "\"a \"");
    EXPECT_EQ(CellText(Variant("a\r\nb")), "a\\r\\nb");
    EXPECT_EQ(CellText(Variant(true)), "1");
    EXPECT_EQ(CellText(Variant(*Decimal::Parse("12.5000"))), "12.5000");
    EXPECT_EQ(CellText(Variant(std::int32_t{-5})), "-5");
    EXPECT_EQ(CellText(Variant(0.1)), "0.1");
}

TEST(ResultTextTest, ListsAllResultSets) {
    auto first = std::make_shared<ado::Recordset>(
        std::vector<ado::Column>{{"a", ado::DataType::kInteger, "int"}, {"", ado::DataType::kVarWChar, ""}});
    first->AppendRow({Variant(std::int32_t{1}), Variant("x")});
    first->SetNext(std::make_shared<ado::Recordset>());
    first->Next()->SetNext(
        std::make_shared<ado::Recordset>(std::vector<ado::Column>{{"b", ado::DataType::kBoolean, "bit"}}));
    EXPECT_EQ(ResultLines(first), (Strings{"a:int | (none):nvarchar", "1 | x", "", "b:bit"}));
}

TEST(ResultTextTest, ShowsWhereResultsPart) {
    EXPECT_EQ(Difference({"a:int", "1", "2"}, {"a:int", "1", "2"}), "");
    EXPECT_EQ(Difference({"a:int", "1", "2"}, {"a:int", "2", "3"}), "  a:int\n- 1\n  2\n+ 3\n");
    EXPECT_EQ(Difference({}, {"a:int"}), "+ a:int\n");
    EXPECT_EQ(Difference({"a:int"}, {}), "- a:int\n");
}

TEST(ResultTextTest, TakesATypeWithoutLengthForAnyLength) {
    EXPECT_EQ(Difference({"a:decimal | b:int"}, {"a:decimal(18,2) | b:int"}), "");
    EXPECT_NE(Difference({"a:decimal(18,4)"}, {"a:decimal(18,2)"}), "");
    EXPECT_NE(Difference({"a:int"}, {"a:decimal(18,2)"}), "");
}

}  // namespace
}  // namespace vicenter::tsql_test
