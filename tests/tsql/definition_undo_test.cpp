// by hand
// Definitions that fail where the batch or the transaction goes on, or that are rolled back: the account set,
// what the session knows of it and of its temporary tables are what they were before.

#include "whole_set_fixture.h"

namespace vicenter::tsql::engine {
namespace {

class DefinitionUndoTest : public WholeSetTest {
  protected:
    // What the text leaves of a table that it changes in vain: the same rows and columns in this session and
    // in the next.
    void ExpectUnchanged(const std::string& table, const std::string& text, const std::string& number) {
        const std::string query = "select * from " + table;
        const std::string before = Run(query);
        EXPECT_EQ(Run("begin try\n" + text + "\nend try begin catch select error_number() as n end catch"),
                  "n:int\n" + number)
            << text;
        EXPECT_EQ(Run(query), before) << text;
        if (table.front() == '#') return;
        EXPECT_EQ(Damage(), "") << text;
        EXPECT_EQ(Run(query), before) << text;
    }
    void MakeTable() {
        ASSERT_EQ(Run("create table t (id int primary key, a int, v varchar(10))\n"
                      "insert t values (1, 5, '123456'), (2, 300, 'abc')"),
                  "");
    }
};

TEST_F(DefinitionUndoTest, A_definition_that_fails_in_TRY_leaves_the_table_as_it_was) {
    MakeTable();
    ExpectUnchanged("t", "alter table t alter column v int", "245");
    ExpectUnchanged("t", "alter table t alter column v varchar(3)", "2628");
    ExpectUnchanged("t", "alter table t alter column a tinyint", "220");
    ExpectUnchanged("t", "alter table t add b int, c int not null", "4901");
    ExpectUnchanged("t", "alter table t add b int, constraint ck check (a > 100)", "547");
    EXPECT_EQ(Run("alter table t add b int, c int"), "");
    EXPECT_EQ(Run("insert t values (3, 1, 'x', 4, 5) select * from t where id = 3"),
              "id:int a:int v:varchar(10) b:int c:int\n3|1|x|4|5");
}

TEST_F(DefinitionUndoTest, A_unique_index_that_fails_in_TRY_refuses_nothing_later) {
    EXPECT_EQ(Run("create table t (id int primary key, n int null) insert t values (1, null), (2, null)"),
              "");
    ExpectUnchanged("t", "create unique index un on t(n)", "1505");
    EXPECT_EQ(Run("insert t values (3, 7), (4, 7)"), "");
    EXPECT_EQ(Run("delete t where id in (1, 3) create unique index un on t(n)"), "");
    EXPECT_EQ(Run("insert t values (5, 7)").substr(0, 10), "error 2601");
}

TEST_F(DefinitionUndoTest, A_definition_that_fails_in_an_open_transaction_is_no_part_of_its_commit) {
    UseStatementTransactions();
    MakeTable();
    EXPECT_EQ(Run("begin tran insert t values (3, 9, 'kept')"), "");
    EXPECT_EQ(Run("alter table t alter column v varchar(3)").substr(0, 10), "error 2628");
    EXPECT_EQ(Run("select @@trancount as n"), "n:int\n1");
    EXPECT_EQ(Run("alter table t add b int, constraint ck check (a > 100)").substr(0, 9), "error 547");
    EXPECT_EQ(Run("commit"), "");
    EXPECT_EQ(Damage(), "");
    EXPECT_EQ(Run("select * from t where id <> 2"), "id:int a:int v:varchar(10)\n1|5|123456\n3|9|kept");
}

TEST_F(DefinitionUndoTest, Of_a_temporary_table_needs_no_transaction_for_that) {
    EXPECT_EQ(Run("create table #d (a varchar(5)) insert #d values ('x'), ('7')"), "");
    EXPECT_EQ(Run("alter table #d alter column a int").substr(0, 9), "error 245");
    EXPECT_EQ(Run("select * from #d"), "a:varchar(5)\nx\n7");
    EXPECT_EQ(Run("alter table #d add b int, c int not null").substr(0, 10), "error 4901");
    EXPECT_EQ(Run("select * from #d"), "a:varchar(5)\nx\n7");
    ExpectUnchanged("#d", "alter table #d add b int, constraint ck check (a > 'm')", "547");
    EXPECT_EQ(Run("insert #d values ('x')"), "");
    EXPECT_EQ(Run("create unique index ux on #d(a)").substr(0, 10), "error 1505");
    EXPECT_EQ(Run("insert #d values ('x') select count(*) as n from #d"), "n:int\n4");
    EXPECT_EQ(Run("select * from sys.objects where 1 = 0").substr(0, 4), "name");
}

TEST_F(DefinitionUndoTest, Temporary_tables_are_what_they_were_after_ROLLBACK) {
    EXPECT_EQ(Run("create table #y (a int, b int) insert #y values (1, 1)"), "");
    EXPECT_EQ(Run("begin tran drop table #y rollback"), "");
    EXPECT_EQ(Run("select * from #y"), "a:int b:int\n1|1");
    EXPECT_EQ(Run("begin tran alter table #y add c int rollback"), "");
    EXPECT_EQ(Run("insert #y values (2, 2) select * from #y"), "a:int b:int\n1|1\n2|2");
    EXPECT_EQ(Run("begin tran drop table #y create table #y (z int) insert #y values (9) rollback"), "");
    EXPECT_EQ(Run("select * from #y"), "a:int b:int\n1|1\n2|2");
    EXPECT_EQ(Run("begin tran create unique index ux on #y(a) rollback"), "");
    EXPECT_EQ(Run("insert #y values (2, 3) select count(*) as n from #y"), "n:int\n3");
    EXPECT_EQ(Run("begin tran create table #n (a int) rollback"), "");
    EXPECT_EQ(Run("create table #n (b int) select * from #n"), "b:int");
}

TEST_F(DefinitionUndoTest, Temporary_tables_are_what_they_were_at_the_savepoint) {
    MakeTable();
    EXPECT_EQ(Run("create table #y (a int) insert #y values (1)"), "");
    EXPECT_EQ(Run("begin tran\n"
                  "insert t values (3, 1, 'x')\n"
                  "alter table #y add b int\n"
                  "save tran s\n"
                  "alter table #y add c int\n"
                  "drop table #y\n"
                  "create table #z (a int)\n"
                  "rollback tran s\n"
                  "select * from #y\n"
                  "rollback tran s\n"
                  "commit"),
              "a:int b:int\n1|NULL");
    EXPECT_EQ(Run("insert #y values (2, 2) select * from #y"), "a:int b:int\n1|NULL\n2|2");
    EXPECT_EQ(Run("select * from #z").substr(0, 9), "error 208");
    EXPECT_EQ(Run("select count(*) as n from t"), "n:int\n3");
}

TEST_F(DefinitionUndoTest, Temporary_tables_are_what_they_were_before_a_batch_that_failed) {
    MakeTable();
    EXPECT_EQ(Run("create table #y (a int) insert #y values (1)"), "");
    EXPECT_EQ(Run("insert t values (3, 1, 'x')\nalter table #y add b int\ninsert #y values (2, 2)\n"
                  "create table #n (a int)\ninsert t values (3, 1, 'x')")
                  .substr(0, 17),
              "error 2627 line 5");
    EXPECT_EQ(Run("select * from #y"), "a:int\n1");
    EXPECT_EQ(Run("insert t values (3, 1, 'x') drop table #y select 1/0 as x").substr(0, 10), "error 8134");
    EXPECT_EQ(Run("insert #y values (2) select * from #y"), "a:int\n1\n2");
    EXPECT_EQ(Run("create table #n (b int)"), "");
}

TEST_F(DefinitionUndoTest, A_temporary_table_of_a_procedure_is_gone_with_it_for_good) {
    EXPECT_EQ(Run("create procedure p as create table #p (a int) begin tran insert #p values (1)"), "");
    Run("exec p");
    EXPECT_EQ(Run("if @@trancount > 0 rollback"), "");
    EXPECT_EQ(Run("select * from #p").substr(0, 9), "error 208");
    EXPECT_EQ(Run("create table #p (b int) select * from #p"), "b:int");
}

// Numbers that were handed out are not handed out again; nor do they come back by an emptied table.
TEST_F(DefinitionUndoTest, Identity_values_of_temporary_tables_go_on_after_ROLLBACK) {
    EXPECT_EQ(Run("create table #i (id int identity(1, 1), b int) insert #i values (1), (2)"), "");
    EXPECT_EQ(Run("begin tran insert #i values (3) alter table #i add c int rollback"), "");
    EXPECT_EQ(Run("insert #i values (4) select * from #i"), "id:int b:int\n1|1\n2|2\n4|4");
    EXPECT_EQ(Run("begin tran truncate table #i rollback insert #i values (5) select max(id) as m from #i"),
              "m:int\n5");
}

}  // namespace
}  // namespace vicenter::tsql::engine
