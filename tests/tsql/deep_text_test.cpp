// Texts that nest deep, or long rows of operators, which become nests: a server takes hundreds of them.

#include "engine_fixture.h"

namespace vicenter::tsql::engine {
namespace {

class DeepTextTest : public EngineTest {
  protected:
    void SetUp() override {
        Run("create table t (a int, b decimal(9,2), s nvarchar(20), v varchar(200)) "
            "insert into t values (1, 1.25, N'x', 'abc'), (2, 2.50, null, 'def')");
    }
    static std::string Times(int count, const std::string& text) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += text;
        return all;
    }
    // head(head(… middle … tail)tail)
    static std::string Nested(int count, const std::string& head, const std::string& middle,
                              const std::string& tail) {
        return Times(count, head) + middle + Times(count, tail);
    }
};

TEST_F(DeepTextTest, A_thousand_operators_stand_in_one_expression) {
    EXPECT_EQ(Run("select a" + Times(30, "+1") + " as n from t"), "n:int\n31\n32");
    EXPECT_EQ(Run("select a" + Times(998, "+1") + " as n from t"), "n:int\n999\n1000");
    EXPECT_EQ(Run("select b" + Times(60, "-0.25") + " as n from t where a" + Times(300, "*1") + " = 2"),
              "n:decimal(38,2)\n-12.50");
    EXPECT_EQ(Run("select len(v" + Times(45, "+v") + ") as n from t"), "n:int\n138\n138");
    EXPECT_EQ(Run("select len(v" + Times(998, "+v") + ") as n from t"), "n:int\n2997\n2997");
    EXPECT_EQ(Run("declare @n int = 1 select @n" + Times(500, "+1") + " as n"), "n:int\n501");
    EXPECT_EQ(
        Run("update t set a = a" + Times(100, "+1") + " where a" + Times(100, "+1") + " > 0 select a from t"),
        "a:int\n101\n102");
    EXPECT_EQ(Run("insert into t (a) values (1" + Times(100, "+1") + ") delete from t where a" +
                  Times(100, "-1") + " = 2 select a from t"),
              "a:int\n101\n101");
}

TEST_F(DeepTextTest, A_hundred_calls_and_cases_nest) {
    EXPECT_EQ(Run("select " + Nested(100, "replace(", "v", ", 'x', 'y')") + " as r from t where a = 1"),
              "r:varchar(8000)\nabc");
    EXPECT_EQ(Run("select " + Nested(100, "case when a = 5 then 0 else ", "a", " end") + " as r from t"),
              "r:int\n1\n2");
    EXPECT_EQ(Run("select " + Nested(100, "case when a > 0 then ", "a", " end") + " as r from t"),
              "r:int\n1\n2");
    EXPECT_EQ(Run("select " + Nested(100, "isnull(", "s", ", N'-')") + " as r from t"),
              "r:nvarchar(20)\nx\n-");
    EXPECT_EQ(Run("select a from t where " + Nested(90, "(a = 7 or ", "a = 2", ")")), "a:int\n2");
    EXPECT_EQ(Run("select a from t where " + Nested(60, "not (", "a = 2", ")")), "a:int\n2");
    EXPECT_EQ(Run("select " + Nested(100, "cast(", "a", " as bigint)") + " as r from t order by " +
                  Nested(60, "abs(", "a", ")") + " desc"),
              "r:bigint\n2\n1");
}

TEST_F(DeepTextTest, Thirty_two_queries_nest) {
    EXPECT_EQ(Run("select a from " + Nested(40, "(select a from ", "t", ") as d") + " where a = 2"),
              "a:int\n2");
    EXPECT_EQ(Run(Nested(40, "select a from t where exists (", "select 1 as x", ")")), "a:int\n1\n2");
    EXPECT_EQ(Run(Nested(40, "select a from t where a in (", "select 2", ")")), "a:int\n2");
    EXPECT_EQ(Run("select " + Nested(40, "(select max(a) + ", "1", " from t)") + " as n"), "n:int\n81");
    // Each refers to the query around it.
    std::string text = "select a from t as t0 where ";
    for (int i = 1; i <= 32; ++i)
        text += "exists (select 1 from t as t" + std::to_string(i) + " where t" + std::to_string(i) +
                ".a = t" + std::to_string(i - 1) + ".a and ";
    EXPECT_EQ(Run(text + "t32.a = 2 and t0.a = 2" + Times(32, ")")), "a:int\n2");
}

TEST_F(DeepTextTest, What_is_not_its_turn_is_not_evaluated) {
    const std::string deep = "1 / (a - 1)" + Times(60, "+0");
    EXPECT_EQ(Run("select case when a = 1 then 0 else " + deep + " end as n from t"), "n:int\n0\n1");
    EXPECT_EQ(Run("select isnull(a, " + deep + ") as n from t"), "n:int\n1\n2");
    EXPECT_EQ(Run("select coalesce(a, " + deep + ") as n, iif(a = 1, 7, " + deep + ") as m from t"),
              "n:int m:int\n1|7\n2|1");
    EXPECT_EQ(Run("\nselect " + deep + " as n from t"),
              "error 8134 line 2: Divide by zero error encountered.");
    EXPECT_EQ(Run("select a" + Times(40, "*2000000000") + " as n from t"),
              "error 8115 line 1: Arithmetic overflow error converting expression to data type int.");
}

TEST_F(DeepTextTest, Values_of_their_own_for_each_row_stay_so) {
    EXPECT_EQ(Run("declare @s varchar(8000) = '' select @s = @s + v" + Times(45, "+'.'") +
                  " from t select len(@s) as n"),
              "n:int\n96");
}

}  // namespace
}  // namespace vicenter::tsql::engine
