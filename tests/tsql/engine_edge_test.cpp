// Where statements stop: what no TRY takes, what dooms a transaction, and limits by their names instead of an
// internal error.

#include <stdexcept>

#include "engine_fixture.h"

namespace vicenter::tsql::engine {
namespace {

class EngineEdgeTest : public EngineTest {
  protected:
    // "8623", or the whole answer where it is no error.
    std::string Number(const std::string& batch) {
        const std::string answer = Run(batch);
        const std::size_t at = answer.rfind("error ");
        return at == std::string::npos ? answer : answer.substr(at + 6, answer.find(' ', at + 6) - at - 6);
    }
    // "head item, item, … tail"
    static std::string List(const std::string& head, int count, const std::string& item,
                            const std::string& mark, const std::string& tail = "") {
        std::string text = head;
        for (int i = 0; i < count; ++i)
            text += (i == 0 ? "" : mark) + item + (item.back() == '_' ? std::to_string(i) : std::string());
        return text + tail;
    }
};

TEST_F(EngineEdgeTest, What_the_text_names_and_is_not_there_no_try_of_that_text_takes) {
    UseStatementTransactions();
    const std::string answer =
        Run("begin try select * from nowhere end try begin catch select 1 as caught end catch select 2 as x");
    EXPECT_EQ(answer, "error 208 line 1: Invalid object name 'nowhere'.");
    EXPECT_EQ(Run("begin try exec('select * from nowhere') end try begin catch select error_number() as n "
                  "end catch"),
              "n:int\n208");
    Run("create procedure p as select * from nowhere");
    EXPECT_EQ(Run("begin try exec p end try begin catch select error_number() as n end catch"), "n:int\n208");
}

// Drivers put texts in the place of the braces themselves.
TEST_F(EngineEdgeTest, A_date_in_braces_has_an_order_of_its_own) {
    for (const char* order : {"mdy", "dmy", "ymd", "ydm", "myd", "dym"}) {
        EXPECT_EQ(Run(std::string("set dateformat ") + order +
                      " select convert(varchar(10), {d '2004-01-02'}, 120) as d"),
                  "d:varchar(10)\n2004-01-02")
            << order;
    }
}

TEST_F(EngineEdgeTest, A_name_that_is_not_there_leaves_the_transaction_open) {
    UseStatementTransactions();
    Run("create table t (a int)");
    EXPECT_EQ(Number("begin tran insert into t values (1) select * from nowhere"), "208");
    EXPECT_EQ(Run("select @@trancount as n"), "n:int\n1");
    EXPECT_EQ(Run("commit select a from t"), "a:int\n1");
    EXPECT_EQ(Number("begin tran insert into t values (2) select cast('x' as int) as x"), "245");
    EXPECT_EQ(Run("select @@trancount as n select count(*) as n from t"), "n:int\n0\n--\nn:int\n1");
}

TEST_F(EngineEdgeTest, A_conversion_that_fails_dooms_the_transaction) {
    for (const bool batches : {true, false}) {
        session_.reset();
        std::filesystem::remove(Path());
        if (!batches) UseStatementTransactions();
        Run("create table t (a int)");
        const std::string doom =
            "begin tran insert into t values (1) begin try select cast('x' as int) as x end try "
            "begin catch select xact_state() as s, @@trancount as n end catch ";
        EXPECT_EQ(Run(doom + "rollback select xact_state() as s"), "s:int n:int\n-1|1\n--\ns:int\n0");
        EXPECT_EQ(Number(doom + "commit"), "3930");
        EXPECT_EQ(Number(doom + "insert into t values (2)"), "3930");
        EXPECT_EQ(Number(doom), "3998");
        EXPECT_EQ(Run("select @@trancount as n select count(*) as n from t"), "n:int\n0\n--\nn:int\n0");
        // What can be mended leaves it as it is.
        EXPECT_EQ(Run("begin tran begin try select 1 / 0 as x end try begin catch select xact_state() as s "
                      "end catch "
                      "insert into t values (3) commit select a from t"),
                  "s:int\n1\n--\na:int\n3");
    }
}

TEST_F(EngineEdgeTest, A_temporary_change_does_not_stand_in_the_way_of_another_process) {
    UseStatementTransactions();
    Run("create table t (a int) create table #t (a int)");
    EXPECT_EQ(Run("begin tran insert into #t values (1)"), "");
    const auto other = Another();
    EXPECT_EQ(RunOn(*other, "insert into t values (1)"), "");
    EXPECT_EQ(Run("insert into t values (2) rollback select count(*) as n from #t"), "n:int\n0");
    EXPECT_EQ(Run("select a from t"), "a:int\n1");
}

TEST_F(EngineEdgeTest, Rows_are_not_counted_after_nocount) {
    Run("create table t (a int) insert into t values (1), (2)");
    EXPECT_EQ(Affected("update t set a = a"), 2);
    EXPECT_EQ(Affected("update t set a = a set nocount on update t set a = a set nocount off"), 2);
    EXPECT_EQ(Affected("set nocount on delete from t"), -1);
}

TEST_F(EngineEdgeTest, No_text_is_an_internal_error) {
    Run("create table t (a int, b nvarchar(10)) insert into t values (1, N'x')");
    EXPECT_EQ(Run(List("select a from t where ", 1100, "a = 1", " or ")), "a:int\n1");
    EXPECT_EQ(Run(List("select a from t where ", 3000, "a = 1", " and ")), "a:int\n1");
    EXPECT_EQ(Run(List("select count(*) as n from t where b in (", 30000, "N'x'", ",", ")")), "n:int\n1");
    EXPECT_EQ(Number(List("select count(*) as n from t where a in (", 251000, "1", ",", ")")), "8623");
    EXPECT_EQ(Number(List("create table wide (", 2001, "c_", " int, ", " int)")), "1702");
    std::string tables = "select 1 as x from t as t_0";
    for (int i = 1; i < 65; ++i)
        tables += ", t as t_" + std::to_string(i);
    EXPECT_EQ(Number(tables), "40510");
    for (int i = 65; i < 250; ++i)
        tables += ", t as t_" + std::to_string(i);
    EXPECT_EQ(Number(tables), "40510");
    EXPECT_EQ(Number(List("select ", 2001, "a as c_", ", ", " from t")), "40510");
    for (const char* misplaced :
         {"select a from t where count(*) > 1", "update t set a = sum(a)",
          "insert into t (a) values (count(*))", "select a from t where row_number() over (order by a) = 1",
          "delete from t where sum(a) > 1", "select t.a from t join t as u on count(*) = 1",
          "select sum(count(*)) from t", "select 1 from t group by sum(a)",
          "update t set a = row_number() over (order by a)", "delete top (null) from t",
          "select top (null) a from t", "create table k (a int, b as a + 1 primary key)",
          "declare @n int update top (@n) t set a = 1", "select a from t order by a offset null rows"}) {
        const std::string answer = Number(misplaced);
        EXPECT_NE(answer, "8624") << misplaced;
    }
}

TEST_F(EngineEdgeTest, A_batch_whose_rows_nobody_can_take_ends_as_any_that_fails) {
    class FullSink : public TextSink {
      public:
        void AddRow(std::vector<Value>& /*row*/) override { throw std::length_error("full"); }
    };
    Run("create table t (a int)");
    FullSink sink;
    const ExecutionReport report = First().Execute("insert t values (1) select * from t", sink);
    ASSERT_EQ(report.errors.size(), 1U);
    EXPECT_EQ(report.errors.front().number, 8624);
    EXPECT_EQ(Run("select count(*) as n, @@trancount as c from t"), "n:int c:int\n0|0");
    EXPECT_EQ(RunOn(*Another(), "insert t values (2)"), "");
}

TEST_F(EngineEdgeTest, A_sound_set_is_not_called_damaged) {
    Run("create table t (a nvarchar(10)) insert into t values (N''), (N' '), (N'x')");
    for (const char* members : {"' ', '', ' '", "'', ' ', ''", "' ', '', ' ', '', '  '"}) {
        EXPECT_EQ(Run(std::string("select count(*) as n from t where a in (") + members + ")"), "n:int\n2");
        EXPECT_EQ(Run(std::string("select count(*) as n from t where a not in (") + members + ")"),
                  "n:int\n1");
    }
}

}  // namespace
}  // namespace vicenter::tsql::engine
