// by hand
// Statements of several changes, and transactions in the middle of a batch: whole or nothing, and nothing but
// their own.

#include "whole_set_fixture.h"

namespace vicenter::tsql::engine {
namespace {

class WholeOrNothingTest : public WholeSetTest {
  protected:
    void MakeTables() {
        ASSERT_EQ(Run("create table t (id int primary key, a int) insert t values (1, 1), (2, 1), (3, 1)\n"
                      "create table o (id int primary key check (id <> 2))\n"
                      "create table #o (id int primary key check (id <> 2))"),
                  "");
        ASSERT_EQ(Run("create procedure three as select id from t order by id"), "");
    }
    std::string Tried(const std::string& text) {
        return Run("begin try\n" + text + "\nend try begin catch select error_number() as n end catch");
    }
    // The sum of a, how many rows there are, and how many each of the targets has.
    std::string State() {
        return Run(
            "select sum(a) as s, count(*) as n, (select count(*) from o) as o,\n"
            "(select count(*) from #o) as p from t");
    }
    static constexpr const char* kState = "s:int n:int o:int p:int\n3|3|0|0";
};

TEST_F(WholeOrNothingTest, Rows_that_OUTPUT_INTO_cannot_put_undo_the_statement) {
    MakeTables();
    for (const std::string target : {"o", "#o"}) {
        for (const std::string change :
             {"update t set a = 9 output inserted.id into ", "delete t output deleted.id into "}) {
            EXPECT_EQ(Tried(change + target + "(id)"), "n:int\n547") << change << target;
            EXPECT_EQ(State(), kState) << change << target;
        }
        EXPECT_EQ(Tried("insert t output inserted.id - 3 into " + target + "(id) select id + 3, 1 from t"),
                  "n:int\n547");
        EXPECT_EQ(State(), kState) << target;
    }
    EXPECT_EQ(Affected("begin try update t set a = 9 output inserted.id into o(id) end try\n"
                       "begin catch update t set a = 1 where id = 1 end catch"),
              1);
}

TEST_F(WholeOrNothingTest, Rows_of_a_temporary_table_go_into_one_of_the_set_or_stay) {
    UseStatementTransactions();
    MakeTables();
    EXPECT_EQ(Run("create table #s (id int) insert #s values (1), (2), (3)"), "");
    EXPECT_EQ(Run("delete #s output deleted.id into o(id)").substr(0, 9), "error 547");
    EXPECT_EQ(Run("select count(*) as n from #s"), "n:int\n3");
    EXPECT_EQ(State(), kState);
    EXPECT_EQ(Run("delete #s output deleted.id into #o(id) where id > 1").substr(0, 9), "error 547");
    EXPECT_EQ(Run("delete #s output deleted.id into o(id) where id <> 2"), "");
    EXPECT_EQ(Run("select id from o select id from #s"), "id:int\n1\n3\n--\nid:int\n2");
}

TEST_F(WholeOrNothingTest, Rows_of_INSERT_EXEC_go_in_all_or_none) {
    MakeTables();
    EXPECT_EQ(Tried("insert o exec three"), "n:int\n547");
    EXPECT_EQ(Tried("insert #o exec three"), "n:int\n547");
    EXPECT_EQ(State(), kState);
    EXPECT_EQ(Run("insert #o exec('select 1 union all select 3 union all select 1')").substr(0, 10),
              "error 2627");
    EXPECT_EQ(State(), kState);
    EXPECT_EQ(Run("insert #o exec('select 1 union all select 3')"), "");
    EXPECT_EQ(Run("select id from #o"), "id:int\n1\n3");
}

TEST_F(WholeOrNothingTest, ROLLBACK_leaves_what_stands_before_BEGIN_TRAN) {
    EXPECT_EQ(Run("create table t (a int)"), "");
    EXPECT_EQ(Run("insert t values (1) begin tran insert t values (2) rollback insert t values (3)"), "");
    Reopen();
    EXPECT_EQ(Run("select a from t"), "a:int\n1\n3");
    EXPECT_EQ(Run("begin tran insert t values (4) commit begin tran insert t values (5) rollback\n"
                  "select max(a) as m, @@trancount as n from t"),
              "m:int n:int\n4|0");
    Reopen();
    EXPECT_EQ(Run("select a from t"), "a:int\n1\n3\n4");
    EXPECT_EQ(Run("insert t values (6)\nbegin tran\nbegin try insert t values (7) select 1/0 as x commit end "
                  "try\nbegin catch if @@trancount > 0 rollback end catch"),
              "");
    EXPECT_EQ(Run("select a from t"), "a:int\n1\n3\n4\n6");
}

TEST_F(WholeOrNothingTest, ROLLBACK_leaves_tables_that_were_made_before_BEGIN_TRAN) {
    EXPECT_EQ(Run("create table t (a int)\ncreate table #t (a int)\nbegin tran\nalter table t add b int\n"
                  "create table u (a int)\nalter table #t add b int\ncreate table #u (a int)\nrollback\n"
                  "select * from t select * from #t"),
              "a:int\n--\na:int");
    EXPECT_EQ(Run("select * from u").substr(0, 9), "error 208");
    EXPECT_EQ(Run("select * from #u").substr(0, 9), "error 208");
    EXPECT_EQ(Run("insert t values (1) insert #t values (1)"), "");
}

TEST_F(WholeOrNothingTest, A_batch_that_fails_is_undone_with_the_transactions_in_it) {
    EXPECT_EQ(Run("create table t (a int)"), "");
    EXPECT_EQ(Run("insert t values (1) begin tran insert t values (2) commit begin tran insert t values (3)\n"
                  "rollback insert t values (4) select 1/0 as x")
                  .substr(0, 10),
              "error 8134");
    EXPECT_EQ(Run("select count(*) as n from t"), "n:int\n0");
}

TEST_F(WholeOrNothingTest, ROLLBACK_in_a_later_batch_leaves_what_stands_before_BEGIN_TRAN) {
    EXPECT_EQ(Run("create table t (a int)"), "");
    EXPECT_EQ(Run("insert t values (1) begin tran insert t values (2)"), "");
    EXPECT_EQ(Run("insert t values (3) save tran s insert t values (4) rollback tran s"), "");
    EXPECT_EQ(Run("select a from t"), "a:int\n1\n2\n3");
    EXPECT_EQ(Run("rollback select a from t"), "a:int\n1");
    Reopen();
    EXPECT_EQ(Run("select a from t"), "a:int\n1");
}

TEST_F(WholeOrNothingTest, A_savepoint_is_found_by_the_letters_of_its_name_and_ends_with_its_transaction) {
    EXPECT_EQ(Run("create table t (a int)"), "");
    EXPECT_EQ(Run("begin tran aa insert t values (1) save tran AA insert t values (2) rollback tran aa\n"
                  "select count(*) as n, @@trancount as c from t"),
              "n:int c:int\n0|0");
    EXPECT_EQ(Run("begin tran insert t values (1) save tran s insert t values (2) save tran s\n"
                  "insert t values (3) rollback tran s select count(*) as n from t commit"),
              "n:int\n2");
    EXPECT_EQ(Run("begin tran save tran s commit rollback tran s").substr(0, 10), "error 3903");
    EXPECT_EQ(Run("begin tran save tran s insert t values (9) commit begin tran rollback tran s commit")
                  .substr(0, 10),
              "error 6401");
}

}  // namespace
}  // namespace vicenter::tsql::engine
