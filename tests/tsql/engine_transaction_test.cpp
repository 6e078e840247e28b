// by hand
#include <fstream>

#include "tests/tsql/engine_fixture.h"
#ifndef _WIN32
#include "tests/tsql/child_process.h"
#endif

namespace vicenter::tsql::engine {
namespace {

class EngineTransactionTest : public EngineTest {
  protected:
    void MakeTable() {
        ASSERT_EQ(Run("create table t (a int not null primary key, b nvarchar(10) null)"), "");
    }
    SessionOptions Impatient() const {
        SessionOptions options = Options();
        options.lockTimeoutMilliseconds = 30;
        return options;
    }
};

TEST_F(EngineTransactionTest, A_batch_that_fails_half_way_leaves_nothing_behind) {
    MakeTable();
    EXPECT_EQ(
        Run("insert into t values(1, 'a')\ninsert into t values(1, 'b')\nselect 1 as never").substr(0, 17),
        "error 2627 line 2");
    EXPECT_EQ(Run("select count(*) as n from t"), "n:int\n0");
}

TEST_F(EngineTransactionTest, Statement_by_statement_goes_on_after_an_error_and_reports_it_at_the_end) {
    UseStatementTransactions();
    MakeTable();
    EXPECT_EQ(Run("insert into t values(1, 'a')\ninsert into t values(1, 'b')\ninsert into t values(2, "
                  "'c')\nselect "
                  "count(*) as n from t"),
              "n:int\n2\nerror 2627 line 2: Violation of PRIMARY KEY constraint 'PK__t'. Cannot insert "
              "duplicate key in "
              "object 'dbo.t'. The duplicate key value is (1).");
    EXPECT_EQ(Run("insert into t values(3, 'a')\nselect * from nowhere\ninsert into t values(4, 'b')"),
              "error 208 line 2: Invalid object name 'nowhere'.");
    EXPECT_EQ(Run("select max(a) as m from t"), "m:int\n3");
}

TEST_F(EngineTransactionTest, A_statement_that_fails_on_its_second_row_changes_no_row) {
    UseStatementTransactions();
    MakeTable();
    Run("insert into t values(1, '1') insert into t values(2, 'x')");
    EXPECT_EQ(Run("begin tran update t set a = a + cast(b as tinyint) * 10 commit").substr(0, 9),
              "error 245");
    EXPECT_EQ(Run("select a from t order by a"), "a:int\n1\n2");
    EXPECT_EQ(Run("begin try update t set a = 10 / (2 - a) end try begin catch select error_number() as n "
                  "end catch"),
              "n:int\n8134");
    EXPECT_EQ(Run("select a from t order by a"), "a:int\n1\n2");
}

TEST_F(EngineTransactionTest, A_syntax_error_anywhere_keeps_the_whole_batch_from_running) {
    UseStatementTransactions();
    MakeTable();
    EXPECT_EQ(Run("insert into t values(1, 'a')\nselect from where").substr(0, 9), "error 156");
    EXPECT_EQ(Run("select count(*) as n from t"), "n:int\n0");
}

TEST_F(EngineTransactionTest, Explicit_transactions_span_batches_and_roll_back) {
    UseStatementTransactions();
    MakeTable();
    Run("begin tran insert into t values(1, 'a')");
    EXPECT_EQ(Run("select @@trancount as n"), "n:int\n1");
    Run("rollback");
    EXPECT_EQ(Run("select count(*) as n from t"), "n:int\n0");
    Run("begin tran insert into t values(1, 'a') commit");
    EXPECT_EQ(Run("select count(*) as n from t"), "n:int\n1");
    EXPECT_EQ(Run("commit").substr(0, 10), "error 3902");
}

TEST_F(EngineTransactionTest, A_caught_error_does_not_undo_the_batch) {
    MakeTable();
    EXPECT_EQ(Run("insert into t values(1, 'a') begin try insert into t values(1, 'b') end try begin catch "
                  "print 'caught' "
                  "end catch insert into t values(2, 'c')"),
              "");
    EXPECT_EQ(Run("select count(*) as n from t"), "n:int\n2");
}

TEST_F(EngineTransactionTest, A_locked_account_set_is_error_1222_after_the_time_given) {
    MakeTable();
    UseStatementTransactions();
    ASSERT_EQ(Run("begin tran insert into t values(1, 'a')"), "");
    Session other(Impatient());
    EXPECT_EQ(RunOn(other, "insert into t values(2, 'b')"),
              "error 1222 line 1: Lock request time out period exceeded.");
    // Reading waits for nobody, and sees what was committed.
    EXPECT_EQ(RunOn(other, "select count(*) as n from t"), "n:int\n0");
    EXPECT_EQ(Run("commit"), "");
    EXPECT_EQ(RunOn(other, "select count(*) as n from t"), "n:int\n1");
    EXPECT_EQ(RunOn(other, "insert into t values(2, 'b')"), "");
}

TEST_F(EngineTransactionTest, A_batch_that_has_read_before_another_wrote_may_still_write) {
    MakeTable();
    const auto other = Another();
    UseStatementTransactions();
    EXPECT_EQ(Run("begin tran select count(*) as n from t"), "n:int\n0");
    EXPECT_EQ(RunOn(*other, "insert into t values(1, 'a')"), "");
    EXPECT_EQ(Run("insert into t values(2, 'b') commit select count(*) as n from t"), "n:int\n2");
}

TEST_F(EngineTransactionTest, Each_query_of_a_batch_sees_what_another_session_has_written_meanwhile) {
    class WritingSink final : public TextSink {
      public:
        explicit WritingSink(Session& other) : other_(other) {}
        void BeginResult(const std::vector<ResultColumn>& columns) override {
            TextSink::BeginResult(columns);
            if (written_) return;
            written_ = true;
            EXPECT_EQ(RunOn(other_, "insert into t values(1, 'a')"), "");
        }

      private:
        Session& other_;
        bool written_ = false;
    };
    MakeTable();
    const auto other = Another();
    WritingSink sink(*other);
    EXPECT_TRUE(
        First().Execute("select count(*) as n from t\nselect count(*) as n from t", sink).errors.empty());
    EXPECT_EQ(sink.Text(), "n:int\n0\n--\nn:int\n1");
    EXPECT_EQ(Run("insert into t values(2, 'b')"), "");
    EXPECT_EQ(Run("select count(*) as n from t"), "n:int\n2");
}

TEST_F(EngineTransactionTest, Another_session_sees_new_columns_tables_and_procedures_at_once) {
    MakeTable();
    const auto other = Another();
    EXPECT_EQ(RunOn(*other, "select * from t"), "a:int b:nvarchar(10)");
    Run("alter table t add c int null create table u (x int)");
    Run("create procedure p as select 1 as one");
    EXPECT_EQ(RunOn(*other, "select * from t"), "a:int b:nvarchar(10) c:int");
    EXPECT_EQ(RunOn(*other, "select * from u"), "x:int");
    EXPECT_EQ(RunOn(*other, "exec p"), "one:int\n1");
    Run("alter procedure p as select 2 as two");
    EXPECT_EQ(RunOn(*other, "exec p"), "two:int\n2");
}

TEST_F(EngineTransactionTest, A_rolled_back_definition_is_gone) {
    EXPECT_EQ(Run("create table t (a int) select 1/0 as x").substr(0, 10), "error 8134");
    EXPECT_EQ(Run("select * from t").substr(0, 9), "error 208");
    EXPECT_EQ(Run("create table t (a int)"), "");
}

TEST_F(EngineTransactionTest, A_file_that_is_no_account_set_is_refused_and_left_alone) {
    {
        std::ofstream file(Path(), std::ios::binary);
        file << std::string(5000, 'x');
    }
    try {
        Session session(Options());
        FAIL() << "opened";
    } catch (const SqlError& error) {
        EXPECT_EQ(error.Number(), 5172);
    }
    EXPECT_EQ(std::filesystem::file_size(Path()), 5000U);
}

TEST_F(EngineTransactionTest, An_account_set_of_a_later_format_is_refused_and_left_alone) {
    EXPECT_EQ(Run("create table t (a int)"), "");
    session_.reset();
    {
        // The last byte of the version in the head of the file.
        std::fstream file(Path(), std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(63);
        file.put('\3');
    }
    try {
        Session session(Options());
        FAIL() << "opened";
    } catch (const SqlError& error) {
        EXPECT_EQ(error.Number(), 948);
        EXPECT_EQ(error.Text(),
                  "The database '" + Path() +
                      "' cannot be opened because it is version 3. This server supports version 2 "
                      "and earlier. A downgrade path is not supported.");
    }
}

TEST_F(EngineTransactionTest, A_missing_file_is_an_error_unless_it_is_to_be_made) {
    SessionOptions options = Options();
    options.create = false;
    try {
        Session session(options);
        FAIL() << "opened";
    } catch (const SqlError& error) {
        EXPECT_EQ(error.Number(), 5120);
    }
    EXPECT_FALSE(std::filesystem::exists(Path()));
}

#ifndef _WIN32  // where processes neither fork nor can be kept from long files; host_kill_test kills there
TEST_F(EngineTransactionTest, A_killed_writer_leaves_the_old_rows_or_the_new_ones) {
    MakeTable();
    std::string first;
    std::string second;
    for (int i = 0; i < 300; ++i) {
        const std::string number = std::to_string(i);
        first += "insert into t values(" + number + ", 'old')\r\n";
        second += "insert into t values(" + number + ", 'new')\r\n";
    }
    Run(first);
    session_.reset();
    for (std::int64_t round = 0; round < 20; ++round) {
        testing_support::KillAfter(round * 400, [&] {
            Session writer(Options());
            for (;;) {
                RunOn(writer, "delete t\r\n" + second);
                RunOn(writer, "delete t\r\n" + first);
            }
        });
        Session reader(Options());
        const std::string rows = RunOn(reader, "select b, count(*) as n from t group by b");
        EXPECT_TRUE(rows == "b:nvarchar(10) n:int\nold|300" || rows == "b:nvarchar(10) n:int\nnew|300")
            << rows;
    }
}

TEST_F(EngineTransactionTest, A_full_disk_is_an_error_and_leaves_the_account_set_whole) {
    MakeTable();
    Run("insert into t values(1, 'kept')");
    session_.reset();
    const int code = testing_support::RunWithFileLimit(200000, [&] {
        Session writer(Options());
        std::string batch;
        for (int i = 2; i < 40000; ++i)
            batch += "insert into t values(" + std::to_string(i) + ", 'lost')\r\n";
        const std::string result = RunOn(writer, batch);
        return result.rfind("error 9002", 0) == 0 || result.rfind("error 823", 0) == 0 ? 0 : 1;
    });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(Run("select * from t"), "a:int b:nvarchar(10)\n1|kept");
    EXPECT_EQ(Run("insert into t values(2, 'b')"), "");
}
#endif

TEST_F(EngineTransactionTest, A_reset_session_has_forgotten_everything) {
    MakeTable();
    Run("create table #t (a int) set nocount on begin tran insert into t values(1, 'a')");
    First().Reset();
    EXPECT_EQ(Run("select * from #t").substr(0, 9), "error 208");
    EXPECT_EQ(Run("select @@trancount as n, count(*) as m from t"), "n:int m:int\n0|0");
}

TEST_F(EngineTransactionTest, A_unit_is_told_of_a_procedure_that_leaves_another_number_of_transactions) {
    Run("create table t (a int)");
    Run("create procedure opens as begin tran insert into t values (1)");
    Run("create procedure closes as commit");
    EXPECT_EQ(Run("insert into t values (7)\nexec opens select 1 as n"),
              "error 266 line 2: Transaction count after EXECUTE indicates a mismatching number of BEGIN and "
              "COMMIT statements. Previous count = 0, current count = 1.");
    EXPECT_EQ(Run("select count(*) as n, @@trancount as c from t"), "n:int c:int\n0|0");
    Run("begin tran insert into t values (2)");
    EXPECT_EQ(Run("exec closes").substr(0, 9), "error 266");
    EXPECT_EQ(Run("select count(*) as n, @@trancount as c from t"), "n:int c:int\n0|0");
    EXPECT_EQ(Run("begin try exec opens end try begin catch end catch select @@trancount as c rollback"),
              "c:int\n1");
}

}  // namespace
}  // namespace vicenter::tsql::engine
