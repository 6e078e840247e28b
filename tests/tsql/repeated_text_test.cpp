// A text that runs again, word for word, is not read again, and its query asks nobody beforehand whether the
// tables are still those of its plan. Whatever happens in between, it answers as a new text would.

#include <string>

#include <sqlite3.h>

#include "engine_fixture.h"

namespace vicenter::tsql::engine {
namespace {

class RepeatedTextTest : public EngineTest {
  protected:
    RepeatedTextTest() { Run("create table t (id int primary key, a int) insert into t values (1, 10)"); }

    // Until its plan is made and trusted.
    std::string Often(const std::string& text) {
        std::string first = Run(text);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(Run(text), first);
        return first;
    }
    void ByOthers(const std::string& batch) {
        if (!other_) other_ = Another();
        EXPECT_EQ(RunOn(*other_, batch), "");
    }
    // The same by a session that has never run it.
    std::string Anew(const std::string& text) { return RunOn(*Another(), text); }

    std::unique_ptr<Session> other_;
};

TEST_F(RepeatedTextTest, SeesTheRowsThatOthersHaveWritten) {
    const std::string text = "select a from t where id > 0 order by id";
    EXPECT_EQ(Often(text), "a:int\n10");
    ByOthers("insert into t values (2, 20)");
    EXPECT_EQ(Often(text), "a:int\n10\n20");
    ByOthers("delete from t");
    EXPECT_EQ(Often(text), "a:int");
    Run("insert into t values (3, 30)");
    EXPECT_EQ(Often(text), "a:int\n30");
}

TEST_F(RepeatedTextTest, SeesTheColumnsThatOthersHaveAdded) {
    const std::string text = "select * from t where id = 1";
    EXPECT_EQ(Often(text), "id:int a:int\n1|10");
    ByOthers("alter table t add b varchar(3) not null default 'x'");
    EXPECT_EQ(Often(text), "id:int a:int b:varchar(3)\n1|10|x");
    ByOthers("drop table t create table t (id int) insert into t values (1)");
    EXPECT_EQ(Often(text), "id:int\n1");
}

TEST_F(RepeatedTextTest, GivesNoRowsOfTheTypesThatTheyHave) {
    const std::string text = "select a from t where id = 99";
    EXPECT_EQ(Often(text), "a:int");
    ByOthers("alter table t alter column a varchar(5)");
    EXPECT_EQ(Run(text), "a:varchar(5)");
}

TEST_F(RepeatedTextTest, ComparesByTheTypeThatAColumnHasByNow) {
    const std::string text = "select id from t where a = 'x5'";
    const std::string refused = Often(text);
    EXPECT_EQ(refused.substr(0, 9), "error 245");
    ByOthers("insert into t values (2, 20)");
    EXPECT_EQ(Run(text), refused);
    ByOthers("alter table t alter column a varchar(5) update t set a = 'X5' where id = 2");
    EXPECT_EQ(Often(text), "id:int\n2");
    ByOthers("delete from t where id = 2 alter table t alter column a int");
    EXPECT_EQ(Often(text), refused);
}

TEST_F(RepeatedTextTest, FailsWhereNamesAreGone) {
    Run("alter table t add b int create table u (a int)");
    Run("create view v as select a from t");
    for (const char* text : {"select b from t", "select a from u", "select * from v"})
        Often(text);
    ByOthers("alter table t drop column b drop table u exec('alter view v as select id, a from t')");
    EXPECT_EQ(Often("select b from t"), "error 207 line 1: Invalid column name 'b'.");
    EXPECT_EQ(Often("select a from u"), "error 208 line 1: Invalid object name 'u'.");
    EXPECT_EQ(Often("select * from v"), "id:int a:int\n1|10");
    ByOthers("create table u (b int, a varchar(2)) insert into u values (1, 'z')");
    EXPECT_EQ(Often("select a from u"), "a:varchar(2)\nz");
}

TEST_F(RepeatedTextTest, FailsAsEverWhereItsValuesDo) {
    const std::string text = "select 1 / (a - 10) as x from t";
    EXPECT_EQ(Often(text), "error 8134 line 1: Divide by zero error encountered.");
    ByOthers("insert into t values (2, 20)");
    EXPECT_EQ(Often(text), "error 8134 line 1: Divide by zero error encountered.");
    ByOthers("delete from t where id = 1");
    EXPECT_EQ(Often(text), "x:int\n0");
}

TEST_F(RepeatedTextTest, ForgetsWhatWasUndone) {
    UseStatementTransactions();
    const std::string text = "select * from t";
    EXPECT_EQ(Often(text), "id:int a:int\n1|10");
    Run("begin transaction");
    Run("alter table t add b int");
    EXPECT_EQ(Often(text), "id:int a:int b:int\n1|10|NULL");
    Run("rollback transaction");
    EXPECT_EQ(Often(text), "id:int a:int\n1|10");
    Run("begin transaction");
    Run("update t set a = 11");
    EXPECT_EQ(Often(text), "id:int a:int\n1|11");
    Run("rollback transaction");
    ByOthers("alter table t add c int");
    EXPECT_EQ(Often(text), "id:int a:int c:int\n1|10|NULL");
}

TEST_F(RepeatedTextTest, FindsChangesInASetWithAJournal) {
    const std::string text = "select * from t";
    session_.reset();
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(Path().c_str(), &database), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(database, "PRAGMA journal_mode = DELETE", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
    EXPECT_EQ(Often(text), "id:int a:int\n1|10");
    ByOthers("insert into t values (2, 20)");
    EXPECT_EQ(Often(text), "id:int a:int\n1|10\n2|20");
    ByOthers("alter table t drop column a");
    EXPECT_EQ(Often(text), "id:int\n1\n2");
}

TEST_F(RepeatedTextTest, KeepsItsLiteralsBesideOthersOfItsShape) {
    Run("insert into t values (2, 20), (3, 30)");
    for (int i = 0; i < 3; ++i) {
        for (const char* id : {"1", "2", "3"}) {
            EXPECT_EQ(Run("select a from t where id = " + std::string(id)),
                      "a:int\n" + std::string(id) + "0");
            EXPECT_EQ(Run("if exists (select 1 from t where id = " + std::string(id) + ") select 'yes' as x"),
                      "x:varchar(3)\nyes");
        }
        EXPECT_EQ(Run("if exists (select 1 from t where id = 4) select 'yes' as x"), "");
    }
}

TEST_F(RepeatedTextTest, KeepsItsLiteralsAmongMoreTextsThanAreKept) {
    Run("declare @i int = 2 while @i < 1000 begin insert into t values (@i, @i * 10) set @i += 1 end");
    for (int round = 0; round < 2; ++round) {
        for (int id = 100; id < 1000; ++id) {
            ASSERT_EQ(Run("select a from t where id = " + std::to_string(id)),
                      "a:int\n" + std::to_string(id * 10));
        }
    }
}

// The style of CONVERT is no value: each has a plan of its own.
TEST_F(RepeatedTextTest, KeepsItsPlanBesideThoseOfOtherStyles) {
    Run("create table d (d datetime) insert into d values ('2026-03-04')");
    const auto inStyle = [this](const char* style) {
        return Run("select convert(varchar(10), d, " + std::string(style) + ") as x from d");
    };
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(inStyle("112"), "x:varchar(10)\n20260304");
        EXPECT_EQ(inStyle("120"), "x:varchar(10)\n2026-03-04");
        for (const char* other : {"101", "102", "103", "104", "105", "110", "111", "121", "126"})
            EXPECT_EQ(inStyle(other),
                      Anew("select convert(varchar(10), d, " + std::string(other) + ") as x from d"));
    }
}

// Two texts that have failed share a program until the first plan of it has looked at the number.
TEST_F(RepeatedTextTest, LeavesAProgramWhosePlanIsAnothersAlone) {
    const std::string first = "select left(s, 3) as x from later";
    const std::string second = "select left(s, 4) as x from later";
    const std::string missing = "error 208 line 1: Invalid object name 'later'.";
    EXPECT_EQ(Often(first), missing);
    EXPECT_EQ(Often(second), missing);
    Run("create table later (s varchar(10)) insert into later values ('abcdef')");
    EXPECT_EQ(Often(first), "x:varchar(3)\nabc");
    EXPECT_EQ(Often(second), "x:varchar(4)\nabcd");
}

TEST_F(RepeatedTextTest, ReadsItsDatesAsTheOptionSays) {
    Run("create table d (d datetime) insert into d values ('20260304')");
    const std::string text = "select count(*) as n from d where d = '03/04/2026'";
    EXPECT_EQ(Often(text), "n:int\n1");
    Run("set dateformat dmy");
    EXPECT_EQ(Often(text), "n:int\n0");
    Run("set dateformat mdy");
    EXPECT_EQ(Often(text), "n:int\n1");
}

TEST_F(RepeatedTextTest, LeavesACursorTheLiteralsThatItWasDeclaredWith) {
    Run("insert into t values (2, 20), (3, 30)");
    const auto declare = [](const char* name, const char* id) {
        return "declare " + std::string(name) + " cursor global for select * from t where id = " + id;
    };
    Run(declare("c", "1"));
    Run("deallocate c");
    Run(declare("c", "2"));
    for (int i = 100; i < 500; ++i)
        Run("select a from t where id = " + std::to_string(i));
    ByOthers("alter table t add b int not null default 7");
    EXPECT_EQ(Run("open c fetch next from c"), "id:int a:int b:int\n2|20|7");
}

}  // namespace
}  // namespace vicenter::tsql::engine
