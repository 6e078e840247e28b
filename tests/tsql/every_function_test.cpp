// Every function of the dialect, called in all its lengths with NULL, the empty text and Chinese: the list is
// that of the engine, so that a new one cannot be left out.

#include <set>
#include <string>
#include <vector>

#include "engine_fixture.h"
#include "tsql/functions/function.h"

namespace vicenter::tsql::engine {
namespace {

class EveryFunctionTest : public EngineTest {
  protected:
    // Words that are called without parentheses.
    static bool IsBare(const FunctionEntry& entry) {
        static const std::set<std::string_view> words = {"current_timestamp", "current_user", "session_user",
                                                         "system_user", "user"};
        return words.contains(entry.name);
    }
    // "select f(a, a)" with as many arguments, over one row.
    static std::string Call(const FunctionEntry& entry, std::size_t count, const std::string& value) {
        std::string sql = "select " + std::string(entry.name);
        if (IsBare(entry)) return sql + " as x";
        sql += "(";
        for (std::size_t i = 0; i < count; ++i) {
            sql += i == 0 ? "" : ", ";
            if (i >= entry.firstValue) {
                sql += value;
            } else {
                sql += entry.name == "iif" ? "1 = 1" : "day";
            }
        }
        sql += ")";
        if (entry.kind == FunctionKind::kWindow) sql += " over (order by (select 1))";
        return sql + " as x";
    }
    // What comes back without its header: the value, or "error" and its number.
    std::string Answer(const std::string& sql) {
        const std::string text = Run(sql);
        const std::size_t line = text.find('\n');
        return line == std::string::npos ? text : text.substr(line + 1);
    }
};

constexpr std::size_t kMostTried = 4;

template <class Look>
void ForEveryCall(Look look) {
    for (const FunctionEntry* entry : AllFunctions()) {
        const std::size_t most = std::min(entry->most, std::max(entry->least, kMostTried));
        for (std::size_t count = entry->least; count <= most; ++count)
            look(*entry, count);
    }
}

TEST_F(EveryFunctionTest, StandsInTheListOnce) {
    std::set<std::string_view> names;
    for (const FunctionEntry* entry : AllFunctions()) {
        EXPECT_TRUE(names.insert(entry->name).second) << entry->name;
        EXPECT_LE(entry->least, entry->most) << entry->name;
        EXPECT_EQ(FindFunction(entry->name), entry);
    }
    EXPECT_GT(names.size(), 80U);
    EXPECT_EQ(FindFunction("nowhere"), nullptr);
}

TEST_F(EveryFunctionTest, GivesNullForNull) {
    // Those that say something of NULL, or of no argument at all.
    const std::set<std::string_view> others = {
        "app_name",    "coalesce",     "concat",       "concat_ws",
        "count",       "count_big",    "cume_dist",    "current_timestamp",
        "ntile",       "percent_rank", "current_user", "db_id",
        "db_name",     "dense_rank",   "getdate",      "getutcdate",
        "host_name",   "isdate",       "isnumeric",    "newid",
        "pi",          "rand",         "rank",         "row_number",
        "schema_name", "session_user", "suser_sname",  "sysdatetime",
        "system_user", "user",         "user_name",    "xact_state"};
    ForEveryCall([&](const FunctionEntry& entry, std::size_t count) {
        const std::string sql = Call(entry, count, "null");
        const std::string answer = Answer(sql);
        if (entry.name == "nullif") {
            // Its type would be that of the first argument.
            EXPECT_EQ(answer.rfind("error 4151", 0), 0U) << sql << ": " << answer;
        } else if (entry.name == "schema_id") {
            EXPECT_EQ(answer, count == 0 ? "1" : "NULL") << sql;
        } else if (others.contains(entry.name)) {
            EXPECT_NE(answer, "NULL") << sql;
        } else if (entry.kind == FunctionKind::kAggregate && entry.name != "string_agg") {
            // NULL without a type is an operand of nothing.
            EXPECT_TRUE(answer == "NULL" || answer.rfind("error 8117", 0) == 0) << sql << ": " << answer;
        } else {
            EXPECT_EQ(answer, "NULL") << sql;
        }
    });
}

// An error of the server's, or one value, the same each time; never a failure of the engine.
TEST_F(EveryFunctionTest, AnswersTheEmptyTextAndChinese) {
    const std::set<std::string_view> changing = {
        "current_timestamp", "getdate", "getutcdate", "newid", "rand", "sysdatetime"};
    for (const std::string value : {"''", "N''", "N'凭证模板'", "N'𠮷'", "'凭证'"}) {
        ForEveryCall([&](const FunctionEntry& entry, std::size_t count) {
            const std::string sql = Call(entry, count, value);
            const std::string answer = Answer(sql);
            EXPECT_FALSE(answer.empty() && entry.least > 0 && value != "''" && value != "N''") << sql;
            EXPECT_EQ(answer.find("8624"), std::string::npos) << sql << ": " << answer;
            EXPECT_EQ(answer.find('\n'), std::string::npos) << sql << ": " << answer;
            if (changing.contains(entry.name)) return;
            EXPECT_EQ(Answer(sql), answer) << sql;
        });
    }
}

// The value comes from a column and from a variable as it comes from a literal.
TEST_F(EveryFunctionTest, AnswersAlikeForALiteralAVariableAndAColumn) {
    Run("create table one (a nvarchar(10))");
    Run("insert into one values (N'凭证模板')");
    const std::set<std::string_view> changing = {
        "current_timestamp", "getdate", "getutcdate", "newid", "rand", "sysdatetime"};
    ForEveryCall([&](const FunctionEntry& entry, std::size_t count) {
        if (changing.contains(entry.name)) return;
        const std::string literal = Answer(Call(entry, count, "N'凭证模板'"));
        const std::string variable =
            Answer("declare @v nvarchar(10) = N'凭证模板' " + Call(entry, count, "@v"));
        const std::string column = Answer(Call(entry, count, "a") + " from one");
        EXPECT_EQ(variable, literal) << entry.name << " of " << count;
        EXPECT_EQ(column, literal) << entry.name << " of " << count;
    });
}

TEST_F(EveryFunctionTest, RefusesOneArgumentTooFewOrTooMany) {
    for (const FunctionEntry* entry : AllFunctions()) {
        if (IsBare(*entry)) continue;
        const int number = entry->least == entry->most ? 174 : 189;
        if (entry->least > 0) {
            const std::string answer = Answer(Call(*entry, entry->least - 1, "null"));
            EXPECT_NE(answer.find(std::to_string(number)), std::string::npos)
                << entry->name << ": " << answer;
        }
        if (entry->most < kManyArguments) {
            const std::string answer = Answer(Call(*entry, entry->most + 1, "null"));
            EXPECT_NE(answer.find(std::to_string(number)), std::string::npos)
                << entry->name << ": " << answer;
        }
    }
}

}  // namespace
}  // namespace vicenter::tsql::engine
