// What nests grows by its own length at each level, in the text that SQLite gets and in what SQLite makes of
// it: an argument that were written twice would double both.

#include "engine_fixture.h"
#include "tsql/syntax/parse/parser.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {
namespace {

std::string Times(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

// Knows the table t and nothing else.
class OneTable final : public TranslateContext {
  public:
    OneTable() {
        table_.name = "t";
        table_.physical = "t";
        for (const auto& [name, type] :
             std::initializer_list<std::pair<const char*, SqlType>>{{"x", SqlType::Int()},
                                                                    {"n", SqlType::Decimal(9, 2)},
                                                                    {"f", SqlType::Float()},
                                                                    {"s", SqlType::VarChar(20)},
                                                                    {"u", SqlType::NVarChar(20)},
                                                                    {"d", SqlType::DateTime()}}) {
            ColumnInfo column;
            column.name = name;
            column.type = type;
            table_.columns.push_back(std::move(column));
        }
    }
    std::optional<SqlType> VariableType(std::string_view name) const override {
        return name == "@v" ? std::optional(SqlType::Int()) : std::nullopt;
    }
    const TableInfo* FindTable(std::string_view name) const override {
        return name == "t" ? &table_ : nullptr;
    }
    const CreateViewStatement* ViewDefinition(std::string_view) override { return nullptr; }
    int LiteralOrdinal(const LiteralExpr&) const override { return -1; }
    bool TakesIdentity(const TableInfo&) const override { return false; }
    void PinLiteral(const LiteralExpr&) override {}

  private:
    TableInfo table_;
};

// What comes around what, a level at a time: the place of the level within is marked by @@.
struct Nest {
    const char* name;
    const char* level;
    const char* innermost;
    const char* around = "select @@ as r from t";
};

std::string Filled(const std::string& form, const std::string& with) {
    std::string text = form;
    const std::size_t at = text.find("@@");
    return text.replace(at, 2, with);
}

std::string Text(const Nest& nest, int depth) {
    std::string text = nest.innermost;
    for (int i = 0; i < depth; ++i)
        text = Filled(nest.level, text);
    return Filled(nest.around, text);
}

std::size_t Translated(const std::string& text) {
    OneTable context;
    const Batch batch = ParseBatch(text);
    const Query& query = *As<SelectStatement>(*batch.statements.front()).query;
    Ways ways;
    return TranslateAsNeeded(context, ways, [&](Translator& translator) { return translator.Select(query); })
        .sql.size();
}

constexpr Nest kNests[] = {
    {"nullif of one type", "nullif(@@, 5)", "x"},
    {"nullif of an integer and a decimal", "nullif(@@, 2.5)", "x"},
    {"nullif of a text and a number", "nullif(@@ + 's', 5)", "s"},
    {"nullif of texts", "nullif(@@ + 'a', u)", "s"},
    {"nullif, second argument", "nullif(x, @@)", "x"},
    {"between", "case when @@ + 1 between 1 and 9 then 1 else 0 end", "x"},
    {"between of two types", "case when @@ + 1 between 1 and 9.5 then 1 else 0 end", "x"},
    {"between of texts and numbers", "case when @@ + 's' between 's' and 7 then s else u end", "s"},
    {"between of a float and a date", "case when @@ + 1 between 1 and d then f else 1 end", "f"},
    {"between, lower bound", "case when 5 not between @@ and 9 then 1 else 0 end", "x"},
    {"between, upper bound", "case when x between 1 and @@ then 1 else 0 end", "x"},
    {"simple case", "case @@ when 1 then 2 when 3 then 4 else 5 end", "x"},
    {"simple case of a sum", "case @@ + 1 when 1 then 2 when 2 then 3 when 4 then 5 end", "x"},
    {"simple case of unlike numbers", "case @@ when 1 then 2 when 2.5 then 3 else 0 end", "x"},
    {"simple case of floats", "case @@ + 1 when 1.5 then 2 when 1e0 then 3 else 0 end", "n"},
    {"simple case of texts and numbers", "case @@ + 's' when 's' then s when 5 then 'a' else u end", "s"},
    {"simple case, compared", "case x when @@ then 2 when 3 then 4 else 5 end", "x"},
    {"simple case, result", "case x when 1 then @@ when 3 then 4 end", "x"},
    {"searched case", "case when @@ > 3 then 4 else 5 end", "x"},
    {"iif", "iif(@@ > 1, 2, 3)", "x"},
    {"choose", "choose(@@, 1, 2, 3)", "x"},
    {"coalesce", "coalesce(@@, x, 5)", "x"},
    {"coalesce, behind", "coalesce(x, @@, 5)", "x"},
    {"isnull", "isnull(@@, 5)", "x"},
    {"in", "case when @@ in (1, 2.5, 3) then 1 else 2 end", "x"},
    {"in, a member", "case when 3 in (1, @@, 3) then 1 else 2 end", "x"},
    {"in a query", "case when @@ in (select x from t as i) then 1 else 2 end", "x"},
    {"any", "case when @@ > any (select x from t as i) then 1 else 2 end", "x"},
    {"like", "case when @@ like 'a%' then 'b' else 'c' end", "s"},
    {"comparison of unlike texts", "case when @@ >= u collate database_default then 'b' else 'c' end", "s"},
    {"sum of integers", "(x - @@)", "x"},
    {"sum of decimals", "(n - @@)", "n"},
    {"sum of floats", "(f * @@)", "f"},
    {"sum of texts", "(s + @@)", "s"},
    {"minus", "-(@@ + 1)", "x"},
    {"bits", "~(@@ | 1)", "x"},
    {"cast", "cast(@@ as bigint)", "x"},
    {"try_cast", "try_cast(@@ as varchar(9))", "x"},
    {"convert", "convert(varchar(30), @@, 120)", "d"},
    {"square", "square(@@)", "f"},
    {"log", "log(@@, 2)", "f"},
    {"power", "power(@@, 2)", "n"},
    {"concat", "concat(@@, 'a')", "s"},
    {"date parts", "dateadd(day, 1, @@)", "d"},
    {"dates", "(@@ + 1)", "d"},
    {"a query", "(select top 1 @@ from t as i)", "x"},
    {"a query in order", "(select top 1 @@ as y from t as i order by y)", "x"},
    {"a query in order of an expression", "(select top 1 @@ as y from t as i order by x + 1, y desc)", "x"},
    {"a query by rank", "(select top 1 with ties @@ as y from t as i where x = 1 order by y)", "x"},
    {"a query by percent", "(select top 1 percent @@ from t as i order by x)", "x"},
    {"a query of distinct rows", "(select distinct top 1 percent @@ as y from t as i order by y)", "x"},
    {"exists", "case when exists (select @@ from t as i) then 1 else 2 end", "x"},
    {"twice in a derived table", "(select x + x - x as x from @@ as d)", "t", "select x from @@ as d"},
    {"texts twice in a derived table", "(select s + s as s from @@ as d)", "t", "select s from @@ as d"},
    {"conditions in a derived table", "(select x from @@ as d where x + x > x)", "t",
     "select x from @@ as d"},
    {"unions", "(select x from @@ as d union all select 1)", "t", "select x from @@ as d"},
    {"groups", "(select x + x as x from @@ as d group by x)", "t", "select x from @@ as d"},
    {"pivot", "(select [1] as x, [2] as n from @@ as d pivot (sum(n) for x in ([1], [2])) as p)",
     "(select x, n from t)", "select x from @@ as d"},
    {"unpivot", "(select v as x, v as n from @@ as d unpivot (v for c in (x, n)) as p where c = 'x')",
     "(select x, cast(n as int) as n from t)", "select x from @@ as d"},
};

TEST(GrowthTest, Every_nest_grows_by_its_own_length_at_each_level) {
    for (const Nest& nest : kNests) {
        const std::size_t six = Translated(Text(nest, 6));
        const std::size_t nine = Translated(Text(nest, 9));
        const std::size_t steps = nine - six;
        // By as much again for as many levels; a little more where numbers get another digit.
        EXPECT_LT(nine, six * 3) << nest.name << ": " << six << ", " << nine;
        if (nine >= six * 3) continue;
        const std::size_t twelve = Translated(Text(nest, 12));
        EXPECT_LT(twelve, nine + 2 * steps) << nest.name << ": " << six << ", " << nine << ", " << twelve;
        const std::size_t twentyFour = Translated(Text(nest, 24));
        EXPECT_LT(twentyFour, 3 * twelve) << nest.name << ": " << twelve << ", " << twentyFour;
    }
}

class GrowthOfRunTest : public EngineTest {
  protected:
    void SetUp() override {
        Run("create table t (x int, n decimal(9,2), f float, s varchar(20), u nvarchar(20), d datetime) "
            "insert into t values (1, 1.25, 1.5, 'x', N'x', '20260101'), (2, 2.5, 2.5, null, N'y', null), "
            "(3, 3, 3, 'a', N'z', null), (4, 4, 4, 'b', null, null)");
    }
    // Rows, or an error that the values make.
    static bool IsOfValues(const std::string& answer) {
        const std::size_t at = answer.find("error ");
        if (at == std::string::npos) return true;
        const std::string number = answer.substr(at + 6, answer.find(' ', at + 6) - at - 6);
        return number == "245" || number == "3623" || number == "8114" || number == "8115";
    }
};

TEST_F(GrowthOfRunTest, Every_nest_runs_two_dozen_deep) {
    for (const Nest& nest : kNests) {
        const std::string answer = Run(Text(nest, 24));
        // Texts that are no numbers and sums that are too large are errors of their own.
        EXPECT_TRUE(IsOfValues(answer)) << nest.name << ": " << answer;
    }
}

TEST_F(GrowthOfRunTest, What_stands_on_each_other_uses_each_column_three_times) {
    std::string chain = "with c0 as (select x from t)";
    for (int i = 1; i <= 30; ++i)
        chain +=
            ", c" + std::to_string(i) + " as (select x + x - x as x from c" + std::to_string(i - 1) + ")";
    EXPECT_EQ(Run(chain + " select x from c30 order by x"), "x:int\n1\n2\n3\n4");
    EXPECT_EQ(Run(chain + " select x from c30 where x > 1 and x < 4 order by x"), "x:int\n2\n3");
    EXPECT_EQ(Run(chain + " select sum(c30.x) as s from c30 join c20 on c30.x = c20.x"), "s:int\n10");
    const std::string derived =
        Times(30, "(select x + x - x as x from ") + "t" + Times(30, " as d)") + " as d";
    EXPECT_EQ(Run("select x from " + derived + " order by x"), "x:int\n1\n2\n3\n4");
    EXPECT_EQ(Run("update t set n = v.x from t join " + derived.substr(0, derived.size() - 1) +
                  "v on v.x = t.x select n from t"),
              "n:decimal(9,2)\n1.00\n2.00\n3.00\n4.00");
    EXPECT_EQ(Run("delete from t where x in (select x from " + derived +
                  " where x + x > 6) "
                  "select x from t"),
              "x:int\n1\n2\n3");
    const std::string distinct =
        Times(30, "(select distinct x + x - x as x from ") + "t" + Times(30, " as d)") + " as d";
    EXPECT_EQ(Run("select x from " + distinct + " where x > 1 order by x"), "x:int\n2\n3");
    const std::string grouped =
        Times(30, "(select x + x - x as x from ") + "t" + Times(30, " as d group by x)") + " as d";
    EXPECT_EQ(Run("select x from " + grouped + " where x > 1 order by x"), "x:int\n2\n3");
    const std::string united = Times(30, "(select x + x - x as x from ") + "t" +
                               Times(30, " as d union all select 7 from t where x > 90)") + " as d";
    EXPECT_EQ(Run("select x from " + united + " where x > 1 order by x"), "x:int\n2\n3");
    const std::string cased =
        Times(30, "(select case when x between 1 and 2.5 then x else nullif(x, 9.5) end as x from ") + "t" +
        Times(30, " as d)") + " as d";
    EXPECT_EQ(Run("select x from " + cased + " where x > 1 order by x"), "x:int\n2\n3");
}

TEST_F(GrowthOfRunTest, Views_stand_on_each_other_twice) {
    Run("create view v0 as select x + x - x as x from t");
    for (int i = 1; i <= 12; ++i) {
        const std::string below = "v" + std::to_string(i - 1);
        Run("create view v" + std::to_string(i) + " as select a.x + b.x - a.x as x from " + below +
            " as a join " + below + " as b on a.x = b.x");
    }
    EXPECT_EQ(Run("select x from v5 order by x"), "x:int\n1\n2\n3\n4");
    EXPECT_EQ(Run("select x from v8 order by x"), "x:int\n1\n2\n3\n4");
    // A limit by its name, rather than hours.
    EXPECT_EQ(Run("create view v13 as select a.x from v12 as a join v12 as b on a.x = b.x").substr(0, 10),
              "error 8623");
}

// As without a common type for all that is compared: each pair by its own.
TEST_F(GrowthOfRunTest, Each_comparison_has_its_own_types) {
    EXPECT_EQ(Run("select x, nullif(x + 0, 2.0) as a, nullif(x + 0, 2.5) as b, nullif(n * 2, 5) as c, "
                  "nullif(x + 0, '3') as d, nullif(f + 0, 2.5) as e from t order by x"),
              "x:int a:int b:int c:decimal(11,2) d:int e:float\n1|1|1|2.50|1|1.5\n2|NULL|2|NULL|2|NULL\n"
              "3|3|3|6.00|NULL|3\n4|4|4|8.00|4|4");
    EXPECT_EQ(Run("select x from t where x + 0 between 2 and 3.5 order by x"), "x:int\n2\n3");
    EXPECT_EQ(Run("select x from t where x + 0 not between '2' and 3.5 order by x"), "x:int\n1\n4");
    EXPECT_EQ(Run("select x from t where f + 0 between '2' and 3.5 order by x"), "x:int\n2\n3");
    EXPECT_EQ(Run("select x from t where x + 0 between null and 2 or x + 0 between 3 and null"), "x:int");
    EXPECT_EQ(Run("select x from t where not x + 0 between null and 2 order by x"), "x:int\n3\n4");
    EXPECT_EQ(Run("select x from t where not (f + 0 between 'z' and 2) order by x").substr(0, 10),
              "error 8114");
    EXPECT_EQ(Run("select s from t where s + '' between 'A ' and N'b' order by s"), "s:varchar(20)\na\nb");
    EXPECT_EQ(Run("select case x + 0 when 1 then 'one' when 2.0 then 'two' when '3' then 'three' else "
                  "'more' end as w from t order by x"),
              "w:varchar(5)\none\ntwo\nthree\nmore");
    EXPECT_EQ(Run("select case n + 0 when 1.25 then 'a' when 2.5e0 then 'b' when 3 then 'c' end as w from t "
                  "order by x"),
              "w:varchar(1)\na\nb\nc\nNULL");
    EXPECT_EQ(Run("select case s + '' when N'X' then 1 when 'a   ' then 2 when null then 3 end as w from t "
                  "order by x"),
              "w:int\n1\nNULL\n2\nNULL");
    EXPECT_EQ(Run("select case x % 2 when 1 then 'odd' when 0 then 'even' end as w from t order by x"),
              "w:varchar(4)\nodd\neven\nodd\neven");
    EXPECT_EQ(Run("select case x + 0 when 1 then 0 else 1 / (x - 1) end as w from t order by x"),
              "w:int\n0\n1\n0\n0");
    EXPECT_EQ(Run("create table k (a int, b int, check (a + b between 1 and 2.5), check (nullif(a + b, 2) is "
                  "not null), check (case a + b when 1 then 1 when 2.5 then 2 else 0 end = 1)) "
                  "insert into k values (0, 1) select a from k")
                  .substr(0, 9),
              "a:int\n0");
    EXPECT_EQ(Run("insert into k values (1, 1)").substr(0, 9), "error 547");
    EXPECT_EQ(Run("insert into k values (2, 2)").substr(0, 9), "error 547");
}

}  // namespace
}  // namespace vicenter::tsql::engine
