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

TEST_F(DeepTextTest, Queries_by_name_stand_on_each_other) {
    std::string chain = "with c0 as (select a from t)";
    for (int i = 1; i <= 200; ++i)
        chain += ", c" + std::to_string(i) + " as (select a + 1 as a from c" + std::to_string(i - 1) +
                 " where a > 0)";
    EXPECT_EQ(Run(chain + " select a from c40 order by a"), "a:int\n41\n42");
    EXPECT_EQ(Run(chain + " select a from c200 order by a"), "a:int\n201\n202");
    EXPECT_EQ(Run(chain + " update c40 set a = 7"),
              "error 4406 line 1: Update or insert of view or function 'c40' failed because it contains a "
              "derived or constant field.");
    EXPECT_EQ(Run(chain + " insert into t (a) select a from c150 where a = 151 select max(a) as n from t"),
              "n:int\n151");
    std::string doubled = "with c0 as (select a from t where a = 1)";
    for (int i = 1; i <= 20; ++i) {
        const std::string before = "c" + std::to_string(i - 1);
        doubled += ", c" + std::to_string(i) + " as (select x.a from " + before + " as x join " + before +
                   " as y on x.a = y.a)";
    }
    EXPECT_EQ(Run(doubled + " select a from c5"), "a:int\n1");
    EXPECT_EQ(Run(doubled + " select a from c9"), "a:int\n1");
    EXPECT_EQ(Run(doubled + " select a from c20").substr(0, 10), "error 8623");
}

TEST_F(DeepTextTest, A_query_by_name_knows_those_before_it) {
    EXPECT_EQ(Run("with a1 as (select a from b1), b1 as (select a from t) select a from a1"),
              "error 208 line 1: Invalid object name 'b1'.");
    EXPECT_EQ(Run("with t as (select a from t as o where a = 1) select a from t").substr(0, 9), "error 252");
    EXPECT_EQ(Run("with c as (select a from t where exists (select * from c)) select a from c").substr(0, 9),
              "error 465");
}

TEST_F(DeepTextTest, Queries_in_FROM_join_more_tables_than_one_may) {
    std::string one = "(select t0.a from t as t0";
    for (int i = 1; i < 40; ++i)
        one += " join t as t" + std::to_string(i) + " on t" + std::to_string(i) + ".a = t0.a";
    one += ")";
    EXPECT_EQ(Run("select x.a from " + one + " as x join " + one + " as y on x.a = y.a where x.a = 2"),
              "a:int\n2");
    Run("create view v40 as " + one.substr(1, one.size() - 2));
    EXPECT_EQ(Run("select sum(x.a) as n from v40 as x left join v40 as y on x.a = y.a + 1"), "n:int\n3");
}

TEST_F(DeepTextTest, An_update_joins_as_many_tables_as_a_query) {
    const auto joined = [](int count) {
        std::string text = " from t";
        for (int i = 1; i < count; ++i)
            text += " join t as t" + std::to_string(i) + " on t" + std::to_string(i) + ".a = t.a";
        return text;
    };
    EXPECT_EQ(Run("update t set b = t63.a" + joined(64) + " select b from t"), "b:decimal(9,2)\n1.00\n2.00");
    EXPECT_EQ(Run("update t set b = 7" + joined(65)).substr(0, 11), "error 40510");
    EXPECT_EQ(Run("delete t" + joined(64) + " where t63.a = 2 select a from t"), "a:int\n1");
}

TEST_F(DeepTextTest, Functions_take_as_many_arguments_as_the_server_s) {
    const auto list = [](int count, const std::string& item) {
        std::string text = item;
        for (int i = 1; i < count; ++i)
            text += ", " + item;
        return text;
    };
    EXPECT_EQ(Run("select coalesce(" + list(300, "s") + ", N'-') as r from t"), "r:nvarchar(20)\nx\n-");
    EXPECT_EQ(Run("select coalesce(" + list(121, "s") + ") as r from t"), "r:nvarchar(20)\nx\nNULL");
    EXPECT_EQ(Run("select len(concat(" + list(254, "s") + ")) as n from t"), "n:int\n254\n0");
    EXPECT_EQ(Run("select concat_ws('-', " + list(200, "s") + ", v, s) as r from t where a = 2"),
              "r:nvarchar(4000)\ndef");
    EXPECT_EQ(Run("select len(concat_ws('--', " + list(253, "s") + ")) as n from t where a = 1"),
              "n:int\n757");
    EXPECT_EQ(Run("select concat(" + list(255, "s") + ") as r from t"),
              "error 189 line 1: The concat function requires 2 to 254 arguments.");
    EXPECT_EQ(
        Run("select a from t where s in (" + list(300, "s") + ") and a not in (" + list(300, "a + 1") + ")"),
        "a:int\n1");
    EXPECT_EQ(Run("select choose(150, " + list(200, "a") + ") as n from t where a = 1"), "n:int\n1");
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

TEST_F(DeepTextTest, Much_becomes_of_groups_and_windows) {
    const std::string ones = Times(60, "+1");
    EXPECT_EQ(Run("select sum(a)" + ones + " as n, count(*)" + ones + " as c from t"), "n:int c:int\n63|62");
    EXPECT_EQ(Run("select sum(a)" + Times(60, "+sum(case when a = 2 then a end)") + " as n from t"),
              "n:int\n123");
    EXPECT_EQ(Run("select s, max(a)" + ones + " as n from t group by s having min(a)" + ones +
                  " > 0 order by max(a)" + ones + " desc"),
              "s:nvarchar(20) n:int\nNULL|62\nx|61");
    EXPECT_EQ(Run("select a" + ones + " as g, count(*) as n from t group by a" + ones + " order by g"),
              "g:int n:int\n61|1\n62|1");
    EXPECT_EQ(Run("select a, row_number() over (order by a desc)" + ones + " as n, sum(a) over ()" + ones +
                  " as m from t order by a"),
              "a:int n:bigint m:int\n1|62|63\n2|61|63");
    EXPECT_EQ(Run("select rank() over (order by sum(a) desc)" + ones +
                  " as n from t group by s having sum(a) < 5 order by n"),
              "n:bigint\n61\n62");
    EXPECT_EQ(Run("select case when count(*) > 5 then 1 / (count(*) - 2)" + ones +
                  " else 0 end as n from t having count(*)" + ones + " > 0"),
              "n:int\n0");
    EXPECT_EQ(Run("select distinct top 1 sum(a)" + ones + " as n from t group by a order by n desc"),
              "n:int\n62");
}

TEST_F(DeepTextTest, What_the_left_side_decides_leaves_the_right_side_alone) {
    EXPECT_EQ(Run("declare @n int = 0 if @n <> 0 and 1 / @n > 2 select 1 as n else select 2 as n"),
              "n:int\n2");
    EXPECT_EQ(Run("declare @n int = 0 while @n = 0 or (@n < 3 and 6 / @n > 2) set @n += 1 select @n as n"),
              "n:int\n3");
    EXPECT_EQ(Run("declare @n int = 0 if " + Nested(60, "(@n = 3 or ", "@n = 0 or 1 / @n > 2", ")") +
                  " select 1 as n"),
              "n:int\n1");
}

TEST_F(DeepTextTest, Deep_texts_stand_in_every_statement) {
    const std::string ones = Times(60, "+1");
    EXPECT_EQ(Run("merge t using (select 1" + ones + " as a) as u on t.a" + ones +
                  " = u.a when matched then update set b = t.b" + ones +
                  " when not matched by source then delete; select a, b from t"),
              "a:int b:decimal(9,2)\n1|61.25");
    EXPECT_EQ(Run("insert into t (a) output inserted.a" + ones + " as n values (5)"), "n:int\n65");
    EXPECT_EQ(Run("select t.a, x.n from t cross apply (select t.a" + ones + " as n) as x"),
              "a:int n:int\n1|61\n5|65");
    EXPECT_EQ(Run("select a, sum(b)" + ones + " as n, grouping(a)" + ones +
                  " as g from t where b is not null group by rollup(a)"),
              "a:int n:decimal(38,2) g:int\n1|121.25|60\nNULL|121.25|61");
    EXPECT_EQ(Run("declare c cursor for select sum(a)" + ones +
                  " as n from t open c fetch next from c close c deallocate c"),
              "n:int\n66");
    EXPECT_EQ(Run("declare c cursor for select a, row_number() over (order by a)" + ones +
                  " as n from t open c fetch next from c update t set s = N'y' where current of c close c "
                  "deallocate c select s from t where a = 1"),
              "a:int n:bigint\n1|61\n--\ns:nvarchar(20)\ny");
    EXPECT_EQ(Run("with n as (select 1 as i union all select i" + ones + "-59 from n where i" + ones +
                  " < 70) select count(*) as c from n"),
              "c:int\n10");
    EXPECT_EQ(Run("create table k (a int, c as a" + ones + ", d int default 1" + ones +
                  ") insert into k (a) values (1) select c, d from k"),
              "c:int d:int\n61|61");
}

TEST_F(DeepTextTest, A_check_takes_as_many_operators_as_a_query) {
    Run("create table m (a int check (a" + Times(1000, "+1") + " > 1000), b decimal(9,2) check (b" +
        Times(100, "*1.0-0.5+0.5") + " < 5), v varchar(20) check (len(v" + Times(500, "+'.'") + ") < 510))");
    EXPECT_EQ(Run("insert into m values (1, 4.5, 'abc') select a, b, v from m"),
              "a:int b:decimal(9,2) v:varchar(20)\n1|4.50|abc");
    EXPECT_EQ(Run("insert into m values (0, 4.5, 'abc')").substr(0, 9), "error 547");
    EXPECT_EQ(Run("insert into m values (1, 5, 'abc')").substr(0, 9), "error 547");
    EXPECT_EQ(Run("insert into m values (1, 4.5, '12345678901')").substr(0, 9), "error 547");
    std::string all = "a <> 5000";
    for (int i = 1; i < 2000; ++i)
        all += " and a <> " + std::to_string(5000 + i);
    Run("create table n (a int, check (" + all + "))");
    EXPECT_EQ(Run("insert into n values (4999), (7000) select count(*) as c from n"), "c:int\n2");
    EXPECT_EQ(Run("insert into n values (6999)").substr(0, 9), "error 547");
    // What is no operator nests as deep as SQLite's parser lets it: it takes no query in a CHECK.
    Run("create table o15 (a int check (" + Nested(15, "abs(", "a", ")") + " > 0))");
    EXPECT_EQ(Run("insert into o15 values (0)").substr(0, 9), "error 547");
    EXPECT_EQ(Run("create table o (a int check (" + Nested(40, "abs(", "a", ")") + " > 0))").substr(0, 9),
              "error 191");
}

TEST_F(DeepTextTest, A_thousand_operators_stand_wherever_an_expression_may) {
    const std::string ones = Times(1000, "+1");
    EXPECT_EQ(Run("select a from t where a" + ones + " = 1002"), "a:int\n2");
    EXPECT_EQ(Run("select sum(a" + ones + ") as n from t"), "n:int\n2003");
    EXPECT_EQ(Run("declare c cursor for select a" + ones +
                  " as n from t open c fetch next from c close c "
                  "deallocate c"),
              "n:int\n1001");
    EXPECT_EQ(Run("merge t using (select 2 as a) as u on t.a" + ones + " = u.a" + ones +
                  " when matched then update set b = 7" + ones + "; select b from t where a = 2"),
              "b:decimal(9,2)\n1007.00");
    EXPECT_EQ(Run("declare @s varchar(8000) = '' select @s = @s + v" + Times(60, "+'.'") +
                  " from t select len(@s) as n"),
              "n:int\n126");
    EXPECT_EQ(Run("declare @n int = 0 select @n = @n + a" + ones + " from t select @n as n"), "n:int\n2003");
    std::string all = "a <> 5000";
    for (int i = 1; i < 5000; ++i)
        all += " and a <> " + std::to_string(5000 + i);
    EXPECT_EQ(Run("select a from t where " + all), "a:int\n1\n2");
    EXPECT_EQ(Run("select a from t where a = " + Nested(900, "(", "2", ")")), "a:int\n2");
    EXPECT_EQ(Run("select " + Nested(900, "(", "a", " + 1)") + " as n from t where " +
                  Nested(400, "(", "a = 1", ")")),
              "n:int\n901");
    EXPECT_EQ(Run("select a" + Times(1990, "+1") + " as n from t where a = 1"), "n:int\n1991");
    EXPECT_EQ(Run("select a" + Times(2100, "+1") + " from t").substr(0, 9), "error 191");
    EXPECT_EQ(Run("select " + Nested(1100, "(", "1", ")")).substr(0, 9), "error 191");
}

// The marks of what has been put elsewhere are control characters.
TEST_F(DeepTextTest, A_name_of_control_characters_is_refused_rather_than_read_as_a_mark) {
    const std::string name =
        "[\x01"
        "1\x01 \x02 \x03]";
    Run("create table u (" + name + " int, a int) insert into u values (7, 1)");
    EXPECT_EQ(Run("select " + name + Times(10, "+1") + " as n from u"), "n:int\n17");
    const std::string deep = Run("select " + Nested(40, "(" + name + " + abs(", "a", "))") + " as n from u");
    EXPECT_TRUE(deep.starts_with("error 191 line 1")) << deep;
    const std::string text =
        "N'\x01"
        "1\x01 \x02 \x03'";
    EXPECT_EQ(Run("select len(s" + Times(40, "+" + text) + ") as n from t where a = 1"), "n:int\n281");
}

TEST_F(DeepTextTest, Values_of_their_own_for_each_row_stay_so) {
    EXPECT_EQ(Run("declare @s varchar(8000) = '' select @s = @s + 'a'" + Times(45, "+'.'") +
                  " select len(@s) as n"),
              "n:int\n46");
    EXPECT_EQ(Run("declare @a int = 1, @b int = 5 select @a = @b + 1, @b = @a + 1 select @a as a, @b as b"),
              "a:int b:int\n6|7");
    EXPECT_EQ(Run("declare @s varchar(8000) = '' select @s = @s + v" + Times(45, "+'.'") +
                  " from t select len(@s) as n"),
              "n:int\n96");
}

}  // namespace
}  // namespace vicenter::tsql::engine
