// Generated expressions, each worked out as it stands and with all that nests taken apart: always the same
// value of the same type, or the same error at the same line.

#include <random>

#include "engine_fixture.h"

namespace vicenter::tsql::engine {
namespace {

class Expressions {
  public:
    explicit Expressions(std::uint32_t seed) : random_(seed) {}

    std::string Number(int depth) {
        if (depth == 0) return One({"a", "b", "c", "0", "1", "3", "2.50", "-7", "null", "@n"});
        const auto next = [&] { return Number(depth - 1); };
        switch (Below(14)) {
            case 0:
            case 1:
            case 2:
            case 3:
                return "(" + next() + One({" + ", " - ", " * ", " / ", " % "}) + next() + ")";
            case 4:
                return "case when " + Condition(depth - 1) + " then " + next() + " else " + next() + " end";
            case 5:
                return "case " + next() + " when " + next() + " then " + next() + " end";
            case 6:
                return "isnull(" + next() + ", " + next() + ")";
            case 7:
                return "coalesce(" + next() + ", " + next() + ", 5)";
            case 8:
                return "nullif(" + next() + ", " + next() + ")";
            case 9:
                return One({"abs(", "len(", "-("}) + next() + ")";
            case 10:
                return "cast(" + Text(depth - 1) + " as int)";
            case 11:
                return One({"cast(", "try_cast("}) + next() + One({" as tinyint)", " as decimal(5,1))"});
            case 12:
                return "(select " + One({"max(", "min(", "sum("}) + "o.a + " + next() + ") from t as o)";
            default:
                return "round(" + next() + ", 1)";
        }
    }
    std::string Text(int depth) {
        if (depth == 0) return One({"s", "v", "N'x'", "'12'", "'-3'", "''", "null", "@s"});
        const auto next = [&] { return Text(depth - 1); };
        switch (Below(7)) {
            case 0:
            case 1:
                return "(" + next() + " + " + next() + ")";
            case 2:
                return "replace(" + next() + ", '2', " + next() + ")";
            case 3:
                return "substring(" + next() + ", 1, " + Number(0) + ")";
            case 4:
                return "case when " + Condition(depth - 1) + " then " + next() + " else " + next() + " end";
            case 5:
                return One({"upper(", "ltrim(", "reverse("}) + next() + ")";
            default:
                return "cast(" + Number(depth - 1) + " as varchar(12))";
        }
    }
    std::string Condition(int depth) {
        if (depth == 0) return One({"a = 1", "b is null", "s like N'x%'", "c in (1, 2.5)", "v = 'ABC '"});
        const auto next = [&] { return Condition(depth - 1); };
        switch (Below(6)) {
            case 0:
                return "(" + next() + One({" and ", " or "}) + next() + ")";
            case 1:
                return "not (" + next() + ")";
            case 2:
                return Number(depth - 1) + One({" = ", " < ", " <> "}) + Number(depth - 1);
            case 3:
                return Text(depth - 1) + One({" = ", " >= "}) + Text(depth - 1);
            case 4:
                return "exists (select 1 from t as o where o.a = t.a and " + Number(depth - 1) + " > 0)";
            default:
                return Number(depth - 1) + " in (" + Number(depth - 1) + ", " + Number(0) + ")";
        }
    }

  private:
    int Below(int limit) { return static_cast<int>(random_() % static_cast<std::uint32_t>(limit)); }
    std::string One(const std::vector<const char*>& choices) {
        return choices[static_cast<std::size_t>(Below(static_cast<int>(choices.size())))];
    }

    std::mt19937 random_;
};

class DeepExpressionsTest : public EngineTest {
  protected:
    std::unique_ptr<Session> With(int deepest, QueryPlans plans) const {
        SessionOptions options = Options();
        options.path =
            (folder_ / (std::to_string(deepest) + std::to_string(static_cast<int>(plans)))).string();
        options.fileSystem = "memdb";
        options.deepestText = deepest;
        options.plans = plans;
        auto session = std::make_unique<Session>(options);
        EXPECT_EQ(
            RunOn(*session,
                  "create table t (id int, a int, b decimal(9,2), c float, s nvarchar(10), v varchar(8)) "
                  "insert into t values (1, 1, 2.50, 0.5, N'x', 'abc'), (2, 0, null, 2, null, '12'), "
                  "(3, 200, -1.25, null, N'12', null)"),
            "");
        return session;
    }
};

// Which of several conditions in WHERE comes first is nobody's promise; within CASE it is.
std::string Where(Expressions& expressions, int depth) {
    return "case when " + expressions.Condition(depth) + " then 1 else 0 end = 1";
}

TEST_F(DeepExpressionsTest, Are_the_same_when_they_are_taken_apart) {
    const auto asTheyStand = With(0, QueryPlans::kUsual);
    std::vector<std::unique_ptr<Session>> apart;
    apart.push_back(With(1, QueryPlans::kUsual));
    apart.push_back(With(1, QueryPlans::kAsWritten));
    apart.push_back(With(25, QueryPlans::kUsual));
    int errors = 0;
    for (std::uint32_t seed = 1; seed <= 600 && !HasFailure(); ++seed) {
        Expressions expressions(seed);
        const int depth = 2 + static_cast<int>(seed % 3);
        const std::string row = std::to_string(seed % 3 + 1);
        const std::string batch =
            "declare @n int = 4, @s varchar(9) = '7'\nselect " + expressions.Number(depth) + " as n,\n" +
            expressions.Text(depth) + " as s from t where id = " + row + "\nselect sum(" +
            expressions.Number(1) + ") + " + expressions.Number(0) + " as g from t where " +
            Where(expressions, depth) + " group by a, b, c order by 1\nselect count(*) as n from t where " +
            Where(expressions, depth);
        const std::string expected = RunOn(*asTheyStand, batch);
        if (expected.find("error ") != std::string::npos) ++errors;
        for (const auto& session : apart)
            EXPECT_EQ(RunOn(*session, batch), expected) << "seed " << seed << "\n" << batch;
    }
    // Of both kinds there are enough.
    EXPECT_GT(errors, 60);
    EXPECT_LT(errors, 540);
}

}  // namespace
}  // namespace vicenter::tsql::engine
