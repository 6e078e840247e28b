// How sessions learn that another one has changed the catalog: by a number of the account set's own.

#include <string>

#include <sqlite3.h>

#include "engine_fixture.h"

namespace vicenter::tsql::engine {
namespace {

class CatalogChangesTest : public EngineTest {
  protected:
    // The first value of a statement of SQLite, while no session has the file open.
    std::int64_t Ask(const char* sql) const {
        sqlite3* database = nullptr;
        sqlite3_stmt* statement = nullptr;
        EXPECT_EQ(sqlite3_open(Path().c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_prepare_v2(database, sql, -1, &statement, nullptr), SQLITE_OK);
        const std::int64_t value =
            sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : 0;
        sqlite3_finalize(statement);
        sqlite3_close(database);
        return value;
    }
};

TEST_F(CatalogChangesTest, LeaveSqlitesOwnNumberAlone) {
    Run("create table t (a int)");
    session_.reset();
    const std::int64_t before = Ask("PRAGMA schema_version");
    const std::int64_t changes = Ask("SELECT last FROM \"ts$identity\" WHERE object = 0");
    Run("create procedure p as select 1 as x");
    Run("create view v as select a from t");
    session_.reset();
    EXPECT_EQ(Ask("PRAGMA schema_version"), before);
    EXPECT_EQ(Ask("SELECT last FROM \"ts$identity\" WHERE object = 0"), changes + 2);
}

TEST_F(CatalogChangesTest, AreSeenInASetThatHasNoNumberYet) {
    Run("create table t (a int)");
    session_.reset();
    Ask("DELETE FROM \"ts$identity\" WHERE object = 0");
    const auto other = Another();
    EXPECT_EQ(RunOn(*other, "select count(*) as n from t"), "n:int\n0");
    EXPECT_EQ(Run("create procedure p as select 1 as x"), "");
    EXPECT_EQ(RunOn(*other, "exec p"), "x:int\n1");
    EXPECT_EQ(RunOn(*other, "alter procedure p as select 2 as x"), "");
    EXPECT_EQ(Run("exec p"), "x:int\n2");
    EXPECT_EQ(Run("alter table t add b varchar(3) not null default 'x'"), "");
    EXPECT_EQ(RunOn(*other, "insert into t (a) values (1) select b from t"), "b:varchar(3)\nx");
    EXPECT_EQ(RunOn(*other, "alter table t alter column b varchar(5)"), "");
    EXPECT_EQ(Run("insert into t values (2, 'abcde') select b from t where a = 2"), "b:varchar(5)\nabcde");
}

}  // namespace
}  // namespace vicenter::tsql::engine
