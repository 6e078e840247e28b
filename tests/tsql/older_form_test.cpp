// Account sets whose decimals are still kept with all places of their column.

#include <sqlite3.h>

#include "engine_fixture.h"

namespace vicenter::tsql::engine {
namespace {

class OlderFormTest : public EngineTest {
  protected:
    // A set of the first format: the same tables, decimals with four places, and its number in the head.
    void MakeOlder() {
        Run("create table one (id int, amt decimal(18,4), note nvarchar(10))");
        Run("create table two (amt decimal(28,2))");
        Run("insert into one values (1, 1200, 'a'), (2, 0.5, 'b'), (3, null, 'c')");
        Run("insert into two values (1200), (0.5)");
        session_.reset();
        sqlite3* file = Raw();
        sqlite3_exec(
            file, "UPDATE one SET amt = '1200.0000' WHERE id = 1; UPDATE one SET amt = '0.5000' WHERE id = 2",
            nullptr, nullptr, nullptr);
        sqlite3_exec(file, "PRAGMA user_version = 1", nullptr, nullptr, nullptr);
        sqlite3_close(file);
    }
    sqlite3* Raw() const {
        sqlite3* file = nullptr;
        EXPECT_EQ(sqlite3_open(Path().c_str(), &file), SQLITE_OK);
        return file;
    }
    std::string Kept(const char* sql) const {
        sqlite3* file = Raw();
        sqlite3_stmt* statement = nullptr;
        EXPECT_EQ(sqlite3_prepare_v2(file, sql, -1, &statement, nullptr), SQLITE_OK);
        std::string text;
        while (sqlite3_step(statement) == SQLITE_ROW) {
            const auto* value = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
            text += (value != nullptr ? value : "NULL") + std::string(" ");
        }
        sqlite3_finalize(statement);
        sqlite3_close(file);
        return text;
    }
};

TEST_F(OlderFormTest, Is_read_as_any_other_and_left_as_it_is) {
    MakeOlder();
    EXPECT_EQ(Run("select amt from one order by id"), "amt:decimal(18,4)\n1200.0000\n0.5000\nNULL");
    EXPECT_EQ(Run("select count(*) from one join two on one.amt = two.amt"), ":int\n2");
    EXPECT_EQ(Run("select count(*) from (select amt from one union select amt from two) as u"), ":int\n3");
    session_.reset();
    EXPECT_EQ(Kept("SELECT amt FROM one ORDER BY id"), "1200.0000 0.5000 NULL ");
    EXPECT_EQ(Kept("PRAGMA user_version"), "1 ");
}

TEST_F(OlderFormTest, Gets_the_form_of_today_with_its_first_change) {
    MakeOlder();
    EXPECT_EQ(Run("update one set note = 'x' where id = 3"), "");
    EXPECT_EQ(Run("select amt from one order by id"), "amt:decimal(18,4)\n1200.0000\n0.5000\nNULL");
    session_.reset();
    EXPECT_EQ(Kept("SELECT amt FROM one ORDER BY id"), "1200 0.5 NULL ");
    EXPECT_EQ(Kept("PRAGMA user_version"), "2 ");
}

TEST_F(OlderFormTest, Keeps_its_form_when_that_change_is_undone) {
    MakeOlder();
    EXPECT_EQ(Run("update one set note = 'x' where id = 3 select 1 / 0 as x").substr(0, 10), "error 8134");
    EXPECT_EQ(Run("select count(*) from one join two on one.amt = two.amt"), ":int\n2");
    session_.reset();
    EXPECT_EQ(Kept("PRAGMA user_version"), "1 ");
    EXPECT_EQ(Run("update one set note = 'x' where id = 3"), "");
    session_.reset();
    EXPECT_EQ(Kept("PRAGMA user_version"), "2 ");
}

// Whatever the places of the column that a number was written to: one number, one text.
TEST_F(OlderFormTest, Is_never_made_again) {
    Run("create table t (id int, a decimal(18,2), b decimal(38,10), c money)");
    Run("insert into t values (1, 1200, 1200, 1200), (2, 0.5, 0.50, 0.5000), (3, -0.00, 0, 0)");
    Run("insert into t select id + 10, b, a, c from t");
    Run("update t set a = a + 1 - 1, b = b * 1, c = c / 1");
    session_.reset();
    EXPECT_EQ(Kept("SELECT a FROM t ORDER BY id"), "1200 0.5 0 1200 0.5 0 ");
    EXPECT_EQ(Kept("SELECT b FROM t ORDER BY id"), "1200 0.5 0 1200 0.5 0 ");
    EXPECT_EQ(Kept("SELECT c FROM t ORDER BY id"), "1200 0.5 0 1200 0.5 0 ");
}

}  // namespace
}  // namespace vicenter::tsql::engine
