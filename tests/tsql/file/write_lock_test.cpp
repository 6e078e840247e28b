// by hand
// Who may write takes the lock for writing before he reads; who only reads never does.

#include <optional>

#include "tests/tsql/file/file_fixture.h"

namespace vicenter::tsql::engine {
namespace {

class WriteLockTest : public SetFileTest {
  protected:
    // Runs a batch and tries to write into the set when its first result comes: the error of that, if any.
    std::string OthersMeanwhile(const std::string& batch) {
        class Writing final : public TextSink {
          public:
            explicit Writing(Session& other) : other_(other) {}
            void BeginResult(const std::vector<ResultColumn>& columns) override {
                TextSink::BeginResult(columns);
                if (!result_) result_ = RunOn(other_, "insert into t values((select max(a) + 1 from t))");
            }
            std::string Result() const { return result_.value_or("no result"); }

          private:
            Session& other_;
            std::optional<std::string> result_;
        };
        SessionOptions options = Existing();
        options.lockTimeoutMilliseconds = 0;
        Session other(options);
        Writing sink(other);
        const ExecutionReport report = First().Execute(batch, sink);
        for (const Diagnostic& error : report.errors)
            ADD_FAILURE() << batch << ": " << error.text;
        return sink.Result().substr(0, 10);
    }
};

TEST_F(WriteLockTest, A_batch_that_may_write_keeps_others_out_from_its_first_read_on) {
    MakeTable();
    ASSERT_EQ(Run("insert into t values(1) create table #x (a int)"), "");
    ASSERT_EQ(Run("create procedure adds as insert into t select max(a) + 1 from t"), "");
    for (const char* batch :
         {"select max(a) as m from t insert into t select max(a) + 1 from t",
          "select 1 as x if 1 = 0 delete from t", "select 1 as x while 1 = 0 begin update t set a = 1 end",
          "select 1 as x begin try exec adds end try begin catch end catch",
          "select 1 as x exec sp_executesql N'update t set a = a'",
          "select 1 as x declare @s nvarchar(100) = 'select 1 as y' exec (@s)",
          "select 1 as x select a into u from t drop table u", "select 1 as x update y set a = a from t y",
          "select 1 as x insert into #x select a from t insert into t select max(a) + 1 from t"})
        EXPECT_EQ(OthersMeanwhile(batch), "error 1222") << batch;
}

TEST_F(WriteLockTest, A_batch_that_only_reads_lets_others_write) {
    MakeTable();
    ASSERT_EQ(Run("insert into t values(1) create table #x (a int)"), "");
    ASSERT_EQ(Run("create procedure looks as select max(a) as m from t"), "");
    for (const char* batch :
         {"select max(a) as m from t select max(a) as m from t", "select 1 as x exec looks",
          "select 1 as x insert into #x select a from t update y set a = 2 from #x y drop table #x",
          "declare @v table (a int) insert into @v select a from t select a from @v",
          "select 1 as x exec sp_executesql N'select a from t'", "select 1 as x exec ('select a from t')",
          "select 1 as x select a into #y from t drop table #y"})
        EXPECT_EQ(OthersMeanwhile(batch), "") << batch;
}

TEST_F(WriteLockTest, A_text_within_a_batch_counts_as_it_stands_there_and_not_as_in_the_one_before) {
    MakeTable();
    ASSERT_EQ(Run("insert into t values(1)"), "");
    for (const std::string head : {"exec ('", "exec sp_executesql N'"}) {
        const std::string tail = head.find('(') == std::string::npos ? "'" : "')";
        const std::string reads = "select 1 as x " + head + "select max(a) as m from t" + tail;
        const std::string writes = "select 1 as x " + head + "update t set a = a       " + tail;
        ASSERT_EQ(reads.size(), writes.size());
        EXPECT_EQ(OthersMeanwhile(reads), "");
        EXPECT_EQ(OthersMeanwhile(writes), "error 1222");
        EXPECT_EQ(OthersMeanwhile(reads), "");
    }
}

// As a program sends it before each of its reads.
TEST_F(WriteLockTest, A_row_put_in_where_it_is_missing_takes_no_lock_where_it_is_there) {
    MakeTable();
    ASSERT_EQ(Run("insert into t values(1)"), "");
    SessionOptions options = Existing();
    options.lockTimeoutMilliseconds = 0;
    options.batchTransactions = false;
    Session writer(options);
    ASSERT_EQ(RunOn(writer, "begin transaction update t set a = a"), "");
    options.batchTransactions = true;
    Session reader(options);
    EXPECT_EQ(RunOn(reader, "if not exists(select 1 from t where a = 1) begin insert into t values(1) end"),
              "");
    EXPECT_EQ(RunOn(reader, "if exists(select 1 from t where a = 1) select a as a from t else delete from t"),
              "a:int\n1");
    EXPECT_EQ(RunOn(reader, "if exists(select 1 from t where a = 2) insert into t values(3)"), "");
    for (const char* writes :
         {"if not exists(select 1 from t where a = 2) insert into t values(2)",
          "if exists(select 1 from t where a = 2) select 1 as x else insert into t values(2)",
          "if exists(select 1 from t where a = 1) exec ('insert into t values(2)')",
          // What stands beside it may rest on what was there when it was asked.
          "if not exists(select 1 from t where a = 1) insert into t values(1) insert into t values(5)"})
        EXPECT_EQ(RunOn(reader, writes).substr(0, 10), "error 1222") << writes;
    // Errors are those of the batch, whichever way it goes.
    EXPECT_EQ(RunOn(reader, "if exists(select 1 from t where a = 2) insert into t values(@v)").substr(0, 9),
              "error 137");
    ASSERT_EQ(RunOn(writer, "commit"), "");
    EXPECT_EQ(RunOn(reader, "if @v = 1 insert into t values(1)").substr(0, 9), "error 137");
    EXPECT_EQ(RunOn(reader, "if not exists(select 1 from t where a = 2) insert into t values(2)"), "");
    EXPECT_EQ(RunOn(reader, "select max(a) as m from t"), "m:int\n2");
}

TEST_F(WriteLockTest, A_transaction_that_will_write_keeps_others_out_from_its_beginning_on) {
    MakeTable();
    ASSERT_EQ(Run("insert into t values(1)"), "");
    UseStatementTransactions();
    EXPECT_EQ(OthersMeanwhile("begin tran select max(a) as m from t insert into t select max(a) + 1 from t "
                              "commit"),
              "error 1222");
    EXPECT_EQ(OthersMeanwhile("select max(a) as m from t insert into t select max(a) + 1 from t"), "");
}

}  // namespace
}  // namespace vicenter::tsql::engine
