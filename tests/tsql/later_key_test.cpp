// by hand
// Primary keys of one integer column that come to a table that is there already: the rows' values of it stay
// what they are through whatever is defined later, in this session and the next.

#include <sqlite3.h>

#include "whole_set_fixture.h"

namespace vicenter::tsql::engine {
namespace {

class LaterKeyTest : public WholeSetTest {
  protected:
    void MakeTable() {
        ASSERT_EQ(Run("create table t (id int not null, a int)\n"
                      "insert t values (100, 1), (50, 2), (70, 3)"),
                  "");
        ASSERT_EQ(Run("alter table t add constraint pk_t primary key (id)"), "");
    }
    // A statement of SQLite's while no session has the file open.
    void Change(const char* sql) {
        Reopen();
        sqlite3* file = nullptr;
        ASSERT_EQ(sqlite3_open(Path().c_str(), &file), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(file, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(file);
        sqlite3_close(file);
    }
    static constexpr const char* kRows = "id:int a:int\n50|2\n70|3\n100|1";
};

TEST_F(LaterKeyTest, Keeps_its_values_when_the_text_of_the_table_is_written_anew) {
    MakeTable();
    EXPECT_EQ(Run("alter table t add constraint ck check (a > 0)"), "");
    EXPECT_EQ(Run("select * from t order by id"), kRows);
    Reopen();
    EXPECT_EQ(Run("select * from t where id = 50"), "id:int a:int\n50|2");
    EXPECT_EQ(Run("alter table t drop constraint ck"), "");
    EXPECT_EQ(Run("alter table t alter column a bigint"), "");
    EXPECT_EQ(Run("select id from t where a = 1"), "id:int\n100");
    EXPECT_EQ(Run("insert t values (70, 9)").substr(0, 10), "error 2627");
}

TEST_F(LaterKeyTest, Keeps_its_values_in_a_session_that_learns_of_it_from_another) {
    Run("create table t (id int not null, a int) insert t values (100, 1), (50, 2), (70, 3)");
    const auto other = Another();
    EXPECT_EQ(RunOn(*other, "select count(*) as n from t"), "n:int\n3");
    EXPECT_EQ(Run("alter table t add constraint pk_t primary key (id)"), "");
    EXPECT_EQ(RunOn(*other, "alter table t add constraint ck check (a > 0)"), "");
    EXPECT_EQ(RunOn(*other, "select * from t order by id"), kRows);
    EXPECT_EQ(Run("select * from t order by id"), kRows);
}

TEST_F(LaterKeyTest, Keeps_the_numbers_of_an_identity_column_that_came_with_it) {
    Run("create table s (a int) insert s values (1), (2)");
    EXPECT_EQ(Run("alter table s add id int identity(100, 1) primary key"), "");
    EXPECT_EQ(Run("alter table s alter column a varchar(10)"), "");
    EXPECT_EQ(Run("insert s (a) values ('3') select * from s order by id"),
              "a:varchar(10) id:int\n1|100\n2|101\n3|102");
}

TEST_F(LaterKeyTest, Is_kept_when_its_table_or_the_key_gets_another_name) {
    MakeTable();
    EXPECT_EQ(Run("exec sp_rename 't', 'u'"), "");
    EXPECT_EQ(Run("insert u values (100, 5)").substr(0, 10), "error 2627");
    EXPECT_EQ(Run("exec sp_rename 'pk_t', 'pk_u'"), "");
    EXPECT_EQ(Run("insert u values (50, 5)").substr(0, 10), "error 2627");
    EXPECT_EQ(Run("select * from u order by id"), kRows);
}

TEST_F(LaterKeyTest, Moves_with_an_update_of_the_key) {
    MakeTable();
    EXPECT_EQ(Run("update t set id = id - 20"), "");
    EXPECT_EQ(Run("update t set id = id + 20"), "");
    EXPECT_EQ(Run("select * from t order by id"), kRows);
    EXPECT_EQ(Run("update t set id = 50 where a = 1").substr(0, 10), "error 2627");
}

TEST_F(LaterKeyTest, Can_be_dropped_and_made_again_unlike_one_that_its_table_was_made_with) {
    MakeTable();
    EXPECT_EQ(Run("alter table t drop constraint pk_t"), "");
    EXPECT_EQ(Run("insert t values (50, 4)"), "");
    EXPECT_EQ(Run("alter table t add constraint pk_t primary key (id)").substr(0, 10), "error 1505");
    EXPECT_EQ(Run("delete t where a = 4"), "");
    EXPECT_EQ(Run("alter table t add constraint pk_t primary key (id)"), "");
    EXPECT_EQ(Run("create table w (id int constraint pk_w primary key, a int)"), "");
    EXPECT_EQ(Run("alter table w drop constraint pk_w").substr(0, 11), "error 40510");
    EXPECT_EQ(Run("select * from t order by id"), kRows);
}

TEST_F(LaterKeyTest, Of_a_temporary_table_keeps_its_values_too) {
    EXPECT_EQ(Run("create table #t (id int not null, a int) insert #t values (100, 1), (50, 2), (70, 3)"),
              "");
    EXPECT_EQ(Run("alter table #t add constraint pk primary key (id)"), "");
    EXPECT_EQ(Run("alter table #t add constraint ck check (a > 0)"), "");
    EXPECT_EQ(Run("update #t set id = id + 1 update #t set id = id - 1 select * from #t order by id"), kRows);
    EXPECT_EQ(Run("insert #t values (50, 5)").substr(0, 10), "error 2627");
}

// As earlier programs have left them behind.
TEST_F(LaterKeyTest, Whose_index_is_lost_is_found_and_made_again_by_a_new_name) {
    MakeTable();
    Change("DROP INDEX \"t$pk_t\"");
    EXPECT_EQ(Damage(), "目录：表 t 缺少索引 pk_t\n");
    EXPECT_EQ(Run("select * from t order by id"), kRows);
    EXPECT_EQ(Run("exec sp_rename 'pk_t', 'pk_u'"), "");
    EXPECT_EQ(Run("insert t values (50, 5)").substr(0, 10), "error 2627");
}

TEST_F(LaterKeyTest, An_index_that_nobody_knows_of_is_found) {
    MakeTable();
    Change("CREATE UNIQUE INDEX \"t$hidden\" ON t(a)");
    EXPECT_EQ(Damage(), "目录：没有登记索引 t$hidden\n");
    Change("DROP INDEX \"t$hidden\"");
}

}  // namespace
}  // namespace vicenter::tsql::engine
