// Batches that are stopped from outside: by a cancel, a time limit, whoever watches.
#include <chrono>
#include <thread>

#include "tests/tsql/engine_fixture.h"

namespace vicenter::tsql::engine {
namespace {

using std::chrono::milliseconds;

constexpr const char* kCancelled = "The query has been canceled by the user.";
constexpr const char* kEndlessLoop = "declare @i int set @i = 0 while 1 = 1 set @i = 1 - @i";
// Some hundred million rows that are never done, in one statement.
constexpr const char* kEndlessQuery =
    "select count(*) as n from t a, t b, t c, t d, t e, t f, t g, t h where a.a + b.a + h.a < 0";

class EngineStopTest : public EngineTest {
  protected:
    void MakeTable() {
        ASSERT_EQ(Run("create table t (a int not null primary key)"), "");
        ASSERT_EQ(
            Run("declare @i int set @i = 0 while @i < 20 begin insert into t values(@i) set @i += 1 end"),
            "");
    }
    ExecutionReport Stopped(std::string_view batch, const ExecutionLimits& limits) {
        TextSink sink;
        return First().Execute(batch, sink, limits);
    }
    // Stopped by whoever watches, at the first question.
    static ExecutionLimits AtOnce() {
        return {milliseconds(0), [](milliseconds) { return false; }};
    }
    std::string Count() { return Run("select count(*) as n from t"); }
};

void ExpectCancelled(const ExecutionReport& report, StopReason reason) {
    EXPECT_EQ(report.stopped, reason);
    ASSERT_EQ(report.errors.size(), 1U);
    EXPECT_EQ(report.errors[0].number, 3617);
    EXPECT_EQ(report.errors[0].text, kCancelled);
    EXPECT_EQ(report.rowsAffected, -1);
}

TEST_F(EngineStopTest, An_endless_loop_ends_at_its_time_limit) {
    const auto begin = std::chrono::steady_clock::now();
    ExpectCancelled(Stopped(kEndlessLoop, {milliseconds(20), {}}), StopReason::kTimeout);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(20));
    EXPECT_EQ(Run("select 1 as a"), "a:int\n1");
}

TEST_F(EngineStopTest, A_long_query_ends_at_its_time_limit) {
    MakeTable();
    ExpectCancelled(Stopped(kEndlessQuery, {milliseconds(20), {}}), StopReason::kTimeout);
    EXPECT_EQ(Count(), "n:int\n20");
}

TEST_F(EngineStopTest, A_cancel_from_another_thread_ends_the_batch) {
    MakeTable();
    Session& session = First();
    for (const std::string batch : {kEndlessLoop, kEndlessQuery}) {
        std::atomic<bool> running{false};
        std::thread other([&] {
            while (!running)
                std::this_thread::yield();
            session.Cancel();
        });
        ExpectCancelled(Stopped(batch, {milliseconds(0),
                                        [&](milliseconds) {
                                            running = true;
                                            return true;
                                        }}),
                        StopReason::kCancelled);
        other.join();
    }
}

// Each of these searches would take minutes to its end.
TEST_F(EngineStopTest, A_long_search_within_one_function_ends_too) {
    ASSERT_EQ(Run("create table #long (a varchar(max), part varchar(max)) insert into #long "
                  "values(replicate(cast('a' as varchar(max)), 6000000), "
                  "replicate(cast('a' as varchar(max)), 1000000) + 'b')"),
              "");
    for (const std::string search :
         {"charindex(part, a)", "patindex('%' + part + '%', a)", "len(replace(a, part, 'c'))",
          "case when a like '%' + part + '%' then 1 end"}) {
        const std::string query = "select " + search + " from #long";
        ExpectCancelled(Stopped(query, AtOnce()), StopReason::kCancelled);
        ExpectCancelled(Stopped("begin try " + query + " end try begin catch select 2 end catch", AtOnce()),
                        StopReason::kCancelled);
    }
}

TEST_F(EngineStopTest, A_cancel_while_nothing_runs_does_nothing) {
    MakeTable();
    First().Cancel();
    EXPECT_EQ(Count(), "n:int\n20");
}

TEST_F(EngineStopTest, The_batch_is_undone_as_a_whole) {
    MakeTable();
    ExpectCancelled(
        Stopped(std::string("insert into t values(100) create table u (a int) ") + kEndlessLoop, AtOnce()),
        StopReason::kCancelled);
    EXPECT_EQ(Count(), "n:int\n20");
    EXPECT_EQ(Run("select * from u").substr(0, 9), "error 208");
    EXPECT_EQ(Run("insert into t values(100)"), "");
}

TEST_F(EngineStopTest, A_change_that_is_stopped_within_leaves_no_row_of_it) {
    MakeTable();
    ASSERT_EQ(Run("create table big (a int)"), "");
    ExpectCancelled(Stopped("insert into t values(100) insert into big select a.a from t a, t b, t c, t d, t "
                            "e, t f, t g, t h",
                            AtOnce()),
                    StopReason::kCancelled);
    EXPECT_EQ(Count(), "n:int\n20");
    EXPECT_EQ(Run("select count(*) as n from big"), "n:int\n0");
}

TEST_F(EngineStopTest, Neither_catch_nor_procedures_go_on_behind_a_cancel) {
    MakeTable();
    ASSERT_EQ(Run("create procedure endless as declare @i int set @i = 0 while 1 = 1 set @i = 1 - @i"), "");
    ExpectCancelled(Stopped("begin try exec endless end try begin catch insert into t values(200) end catch "
                            "insert into t values(201)",
                            AtOnce()),
                    StopReason::kCancelled);
    EXPECT_EQ(Count(), "n:int\n20");
    ExpectCancelled(
        Stopped("while 1 = 1 begin begin try exec endless end try begin catch print 'x' end catch end",
                AtOnce()),
        StopReason::kCancelled);
}

TEST_F(EngineStopTest, Statement_by_statement_what_was_done_before_stays) {
    UseStatementTransactions();
    MakeTable();
    ExpectCancelled(
        Stopped(std::string("insert into t values(100) ") + kEndlessLoop + " insert into t values(101)",
                AtOnce()),
        StopReason::kCancelled);
    EXPECT_EQ(Count(), "n:int\n21");
    ExpectCancelled(Stopped(std::string("begin tran insert into t values(102) ") + kEndlessLoop, AtOnce()),
                    StopReason::kCancelled);
    EXPECT_EQ(Run("select @@trancount as n"), "n:int\n0");
    EXPECT_EQ(Count(), "n:int\n21");
}

TEST_F(EngineStopTest, A_batch_that_waits_for_a_lock_stops_waiting) {
    UseStatementTransactions();
    MakeTable();
    SessionOptions patient = Options();
    patient.lockTimeoutMilliseconds = -1;
    Session other(patient);
    ASSERT_EQ(Run("begin tran insert into t values(100)"), "");
    TextSink sink;
    ExpectCancelled(other.Execute("insert into t values(101)", sink, {milliseconds(30), {}}),
                    StopReason::kTimeout);
    ASSERT_EQ(Run("commit"), "");
    EXPECT_EQ(RunOn(other, "insert into t values(101)"), "");
    EXPECT_EQ(Count(), "n:int\n22");
}

TEST_F(EngineStopTest, A_lock_that_is_not_given_is_waited_for_so_long_and_no_longer) {
    UseStatementTransactions();
    MakeTable();
    SessionOptions impatient = Options();
    impatient.lockTimeoutMilliseconds = 30;
    Session other(impatient);
    ASSERT_EQ(Run("begin tran insert into t values(100)"), "");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(RunOn(other, "insert into t values(101)").substr(0, 10), "error 1222");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(30));
    ASSERT_EQ(Run("rollback"), "");
}

TEST_F(EngineStopTest, Table_variables_of_a_stopped_batch_are_gone) {
    MakeTable();
    const std::string batch =
        std::string("declare @v table (a int) insert into @v values(1) ") + kEndlessLoop;
    ExpectCancelled(Stopped(batch, AtOnce()), StopReason::kCancelled);
    EXPECT_EQ(Run("declare @v table (a int) select count(*) as n from @v"), "n:int\n0");
}

}  // namespace
}  // namespace vicenter::tsql::engine
