// What SQLite has to prepare: a text that runs again prepares nothing, whatever temporary tables it makes.

#include <sqlite3.h>

#include "engine_fixture.h"

namespace vicenter::tsql::engine {
namespace {

// SQLite asks for each table that a statement is to read or to change, whenever it prepares it, for the first
// time or anew.
int asked = 0;

int Allow(void* /*data*/, int action, const char* /*first*/, const char* /*second*/, const char* /*database*/,
          const char* /*trigger*/) {
    if (action != SQLITE_TRANSACTION && action != SQLITE_SAVEPOINT) ++asked;
    return SQLITE_OK;
}

int Watch(sqlite3* database, char** /*error*/, const void* /*functions*/) {
    return sqlite3_set_authorizer(database, Allow, nullptr);
}

class PreparationTest : public EngineTest {
  protected:
    PreparationTest() { sqlite3_auto_extension(reinterpret_cast<void (*)()>(Watch)); }
    ~PreparationTest() override { sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(Watch)); }

    // How often SQLite asks when the text runs for the third time.
    int AskedByThird(const std::string& text) {
        for (int run = 1; run < 3; ++run)
            Run(text);
        asked = 0;
        last_ = Run(text);
        return asked;
    }

    std::string last_;
};

TEST_F(PreparationTest, IsSeen) {
    Run("create table t (a int)");
    asked = 0;
    Run("select count(*) as n from t");
    EXPECT_GT(asked, 0);
    EXPECT_EQ(AskedByThird("select count(*) as n from t"), 0);
    EXPECT_EQ(last_, "n:int\n0");
}

TEST_F(PreparationTest, IsNotNeededForTheTablesOfACall) {
    Run("create table t (a int, b varchar(10))");
    Run("insert into t values (1, 'x'), (2, 'y')");
    Run("create procedure p @least int as\n"
        "create table #a (n int not null)\n"
        "insert into #a select a from t where a >= @least\n"
        "create table #b (n int not null primary key, b varchar(10) collate database_default not null)\n"
        "insert into #b select t.a, t.b from t inner join #a on #a.n = t.a\n"
        "declare @sql nvarchar(100)\n"
        "set @sql = 'update #b set b = b + ''!'' where n = 2'\n"
        "exec (@sql)\n"
        "declare @last varchar(10)\n"
        "declare c cursor local for select b from #b order by n\n"
        "open c\n"
        "fetch next from c into @last\n"
        "while @@fetch_status = 0 fetch next from c into @last\n"
        "close c\n"
        "deallocate c\n"
        "update t set b = @last where a in (select n from #a) and a = 0\n"
        "select @last as last, (select count(*) from #a) as n\n"
        "drop table #b\n");
    // A cursor is planned when it is declared.
    EXPECT_LE(AskedByThird("exec p 1"), 20);
    EXPECT_EQ(last_, "last:varchar(10) n:int\ny!|2");
}

TEST_F(PreparationTest, IsNotNeededForTableVariables) {
    Run("create procedure p @a int as\n"
        "declare @t table (id int identity, a int primary key)\n"
        "insert into @t (a) values (@a), (@a + 1)\n"
        "select sum(id) as ids, sum(a) as a from @t\n");
    EXPECT_EQ(AskedByThird("exec p 3"), 0);
    EXPECT_EQ(last_, "ids:int a:int\n3|7");
}

TEST_F(PreparationTest, IsNotNeededBehindTemporaryTablesOfOthers) {
    Run("create table t (a int)");
    Run("create procedure p as create table #a (n int) insert into #a values (1)");
    const std::string text = "select count(*) as n from t";
    EXPECT_EQ(AskedByThird(text), 0);
    Run("exec p");
    asked = 0;
    EXPECT_EQ(Run(text), "n:int\n0");
    EXPECT_GT(asked, 0) << "another table in SQLite's temporary schema";
    Run("exec p");
    Run("create table #a (n int) drop table #a");
    asked = 0;
    EXPECT_EQ(Run(text), "n:int\n0");
    EXPECT_EQ(asked, 0);
}

TEST_F(PreparationTest, IsNotNeededForTextsThatBeginWithADeclaration) {
    Run("create table t (a int)");
    EXPECT_EQ(
        AskedByThird("declare @n int, @a int = 5 select @n = count(*) from t where a = @a select @n as n"),
        0);
    asked = 0;
    EXPECT_EQ(Run("declare @n int, @a int = 7 select @n = count(*) from t where a = @a select @n as n"),
              "n:int\n0");
    EXPECT_EQ(asked, 0);
}

TEST_F(PreparationTest, IsNotNeededForNumbersThatAreHandedOut) {
    Run("create table t (id int identity, a int)");
    EXPECT_EQ(AskedByThird("insert into t (a) values (1) select scope_identity() as id"), 0);
    EXPECT_EQ(last_, "id:decimal(38,0)\n3");
}

// More forms by turns than are put aside: each is made and dropped, and none stays behind.
TEST_F(PreparationTest, KeepsAsManyTablesAsAreWorthIt) {
    std::string text;
    for (int form = 0; form < 100; ++form) {
        const std::string name = "#t" + std::to_string(form);
        text +=
            "create table " + name + " (a int) insert into " + name + " values (1) drop table " + name + "\n";
    }
    for (int run = 0; run < 3; ++run)
        EXPECT_EQ(Run(text), "");
    EXPECT_EQ(Run("create table #t0 (a int) select count(*) as n from #t0"), "n:int\n0");
}

}  // namespace
}  // namespace vicenter::tsql::engine
