// Generated tables and queries over values that are equal without being spelt alike: decimals of two scales,
// texts with blanks, of other width, case and kana, NULLs. Each query is asked with and without indexes, with
// SQLite's plans as they are and as they are written, and must always give the number of rows that comparing
// every value with every other one gives.

#include <algorithm>
#include <functional>
#include <optional>
#include <random>

#include "engine_fixture.h"
#include "platform/system/collation.h"

namespace vicenter::tsql::engine {
namespace {

class ChineseCollation final : public TextCollation {
  public:
    int Compare(std::string_view a, std::string_view b) const override {
        return system::Collator::Chinese().Compare(a, b);
    }
    std::string Fold(std::string_view text) const override { return system::Collator::Chinese().Fold(text); }
};

// A value as T-SQL writes it, and its text; nothing for NULL.
using Cell = std::optional<std::string>;
using Column = std::vector<Cell>;

struct Family {
    const char* name;
    const char* first;  // the types of the two columns
    const char* second;
    std::vector<const char*> values;
    bool isText;
};

const Family kFamilies[] = {
    {"decimals", "decimal(18,2)", "decimal(28,4)", {"0", "1200", "-3.5", "0.1", "99.99", "-0.01"}, false},
    {"money and decimal", "money", "decimal(38,10)", {"0", "1200", "-3.5", "0.1", "10", "100"}, false},
    {"integer and decimal", "int", "decimal(12,3)", {"0", "1200", "-35", "7", "70"}, false},
    {"texts",
     "nvarchar(20)",
     "varchar(30)",
     {"", " ", "   ", "a", "A ", "Ａ", "b", "1001", "1001  ", "1０01", "かな", "カナ", "ｶﾅ", "银行", "银行 "},
     true},
    {"padded texts",
     "nchar(6)",
     "nvarchar(20)",
     {"", " ", "x", "X ", "Ｘ", "xy", "银行存款", "银行存款 "},
     true},
};

int Compare(const Family& family, const std::string& a, const std::string& b) {
    if (family.isText) return CompareTexts(ChineseCollation(), a, b);
    return Decimal::Compare(*Decimal::Parse(a), *Decimal::Parse(b));
}

bool Same(const Family& family, const Cell& a, const Cell& b) {
    return a && b && Compare(family, *a, *b) == 0;
}

bool Alike(const Family& family, const Cell& a, const Cell& b) {
    return (!a && !b) || Same(family, a, b);
}

bool Holds(const Family& family, const Column& column, const Cell& cell) {
    return std::any_of(column.begin(), column.end(),
                       [&](const Cell& other) { return Alike(family, other, cell); });
}

Column Distinct(const Family& family, const Column& column) {
    Column kept;
    for (const Cell& cell : column) {
        if (!Holds(family, kept, cell)) kept.push_back(cell);
    }
    return kept;
}

std::string Literal(const Family& family, const Cell& cell) {
    if (!cell) return "null";
    return family.isText ? "N'" + *cell + "'" : *cell;
}

std::string Written(const Family& family, const Column& column) {
    std::string rows;
    for (const Cell& cell : column)
        rows += (rows.empty() ? "(" : ", (") + Literal(family, cell) + ")";
    return rows;
}

class SameRowsTest : public EngineTest, public testing::WithParamInterface<QueryPlans> {
  protected:
    SameRowsTest() {
        SessionOptions options = Options();
        options.fileSystem = "memdb";
        options.collation = &chinese_;
        options.plans = GetParam();
        session_ = std::make_unique<Session>(options);
    }

    Column Some(const Family& family, std::size_t most) {
        Column column(random_() % most + 1);
        for (Cell& cell : column) {
            if (random_() % 7 != 0) cell = family.values[random_() % family.values.size()];
        }
        return column;
    }
    void Fill(const Family& family, const std::string& table, const char* type, const Column& column) {
        Run("if object_id('" + table + "') is not null drop table " + table);
        ASSERT_EQ(Run("create table " + table + " (k " + type + ") insert into " + table + " values " +
                      Written(family, column)),
                  "");
    }
    void ExpectCount(const std::string& query, std::size_t expected) {
        EXPECT_EQ(Run(query), ":int\n" + std::to_string(expected)) << query;
    }
    void ExpectJoins(const Family& family, const Column& one, const Column& two);
    void ExpectSets(const Family& family, const Column& one, const Column& two);
    void ExpectLists(const Family& family, const Column& one, const Column& list);
    void ExpectOrder(const Family& family, const Column& one);
    void ExpectChanges(const Family& family, const Column& one, const Column& two);

    ChineseCollation chinese_;
    std::mt19937 random_{20260131};
};

std::size_t Count(const Column& column, const std::function<bool(const Cell&)>& takes) {
    return static_cast<std::size_t>(std::count_if(column.begin(), column.end(), takes));
}

void SameRowsTest::ExpectJoins(const Family& family, const Column& one, const Column& two) {
    std::size_t pairs = 0;
    for (const Cell& cell : one)
        pairs += Count(two, [&](const Cell& other) { return Same(family, cell, other); });
    const auto met = [&](const Cell& cell) {
        return Count(two, [&](const Cell& other) { return Same(family, cell, other); }) > 0;
    };
    const std::size_t matched = Count(one, met);
    ExpectCount("select count(*) from one join two on one.k = two.k", pairs);
    ExpectCount("select count(*) from two join one on one.k = two.k", pairs);
    ExpectCount("select count(*) from one, two where two.k = one.k", pairs);
    ExpectCount(
        "select count(*) from two full join one on one.k = two.k where one.k is not null and two.k is not "
        "null",
        pairs);
    ExpectCount("select count(*) from one left join two on one.k = two.k where two.k is null",
                one.size() - matched);
    ExpectCount("select count(*) from one where exists (select * from two where two.k = one.k)", matched);
    ExpectCount("select count(*) from one where k in (select k from two)", matched);
    const bool hasNull = Count(two, [](const Cell& cell) { return !cell; }) > 0;
    const std::size_t absent = Count(one, [&](const Cell& cell) { return cell && !met(cell); });
    ExpectCount("select count(*) from one where k not in (select k from two)", hasNull ? 0 : absent);
    ExpectCount("select count(*) from one where k = any (select k from two)", matched);
    ExpectCount("select count(*) from (select k from one group by k) as g join two on g.k = two.k", [&] {
        std::size_t sum = 0;
        for (const Cell& cell : Distinct(family, one))
            sum += Count(two, [&](const Cell& other) { return Same(family, cell, other); });
        return sum;
    }());
}

void SameRowsTest::ExpectSets(const Family& family, const Column& one, const Column& two) {
    const Column left = Distinct(family, one);
    const Column right = Distinct(family, two);
    const std::size_t shared = Count(left, [&](const Cell& cell) { return Holds(family, right, cell); });
    const auto sets = [](const char* word) {
        return std::string("select count(*) from (select k from one ") + word + " select k from two) as s";
    };
    ExpectCount("select count(*) from (select distinct k from one) as d", left.size());
    ExpectCount("select count(*) from (select k from one group by k) as d", left.size());
    ExpectCount("select count(distinct k) from one",
                Count(left, [](const Cell& cell) { return cell.has_value(); }));
    ExpectCount(sets("union"), left.size() + right.size() - shared);
    ExpectCount(sets("intersect"), shared);
    ExpectCount(sets("except"), left.size() - shared);
    ExpectCount(sets("union all"), one.size() + two.size());
}

void SameRowsTest::ExpectLists(const Family& family, const Column& one, const Column& list) {
    std::string members;
    std::string alternatives;
    for (const Cell& cell : list) {
        members += (members.empty() ? "" : ", ") + Literal(family, cell);
        alternatives += (alternatives.empty() ? "k = " : " or k = ") + Literal(family, cell);
    }
    const auto met = [&](const Cell& cell) { return cell && Holds(family, list, cell); };
    const bool hasNull = Count(list, [](const Cell& cell) { return !cell; }) > 0;
    ExpectCount("select count(*) from one where k in (" + members + ")", Count(one, met));
    ExpectCount("select count(*) from one where " + alternatives, Count(one, met));
    ExpectCount("select count(*) from one where k not in (" + members + ")",
                hasNull ? 0 : Count(one, [&](const Cell& cell) { return cell && !met(cell); }));
}

// NULLs first, and no value behind a greater one.
void SameRowsTest::ExpectOrder(const Family& family, const Column& one) {
    TextSink sink;
    First().Execute("select k from one order by k", sink);
    std::vector<std::string> rows;
    std::string line;
    for (const char c : sink.Text() + "\n") {
        if (c != '\n') {
            line += c;
        } else {
            rows.push_back(std::exchange(line, {}));
        }
    }
    ASSERT_EQ(rows.size(), one.size() + 1);
    for (std::size_t i = 2; i < rows.size(); ++i) {
        if (rows[i - 1] == "NULL") continue;
        ASSERT_NE(rows[i], "NULL");
        EXPECT_LE(Compare(family, rows[i - 1], rows[i]), 0) << rows[i - 1] << " before " << rows[i];
    }
}

void SameRowsTest::ExpectChanges(const Family& family, const Column& one, const Column& two) {
    const std::size_t matched =
        Count(one, [&](const Cell& cell) { return cell && Holds(family, two, cell); });
    EXPECT_EQ(Affected("update one set k = one.k from one join two on one.k = two.k"),
              static_cast<std::int64_t>(matched));
    EXPECT_EQ(Affected("delete one from two join one on one.k = two.k"), static_cast<std::int64_t>(matched));
}

TEST_P(SameRowsTest, Of_every_query_however_it_is_run) {
    constexpr int kRounds = 8;
    for (const Family& family : kFamilies) {
        if (family.isText && GetParam() == QueryPlans::kEvery) continue;
        for (int round = 0; round < kRounds; ++round) {
            const Column one = Some(family, 9);
            const Column two = Some(family, 9);
            const Column list = Some(family, 5);
            SCOPED_TRACE(std::string(family.name) + "\none: " + Written(family, one) +
                         "\ntwo: " + Written(family, two));
            for (const int indexes : {0, 1, 2, 3}) {
                Fill(family, "one", family.first, one);
                Fill(family, "two", family.second, two);
                if ((indexes & 1) != 0) {
                    EXPECT_EQ(Run("create index ix_one on one(k)"), "");
                }
                if ((indexes & 2) != 0) {
                    EXPECT_EQ(Run("create index ix_two on two(k desc)"), "");
                }
                const bool isUnique = Distinct(family, one).size() == one.size();
                EXPECT_EQ(Run("create unique index ux_one on one(k)").empty(), isUnique);
                ExpectJoins(family, one, two);
                ExpectSets(family, one, two);
                ExpectLists(family, one, list);
                ExpectOrder(family, one);
                ExpectChanges(family, one, two);
                if (HasFailure()) return;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Plans, SameRowsTest,
                         testing::Values(QueryPlans::kUsual, QueryPlans::kAsWritten, QueryPlans::kEvery));

}  // namespace
}  // namespace vicenter::tsql::engine
