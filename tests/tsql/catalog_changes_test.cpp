// How sessions learn that another one has changed the catalog: by a number of the account set's own.

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <sqlite3.h>

#include "engine_fixture.h"
#include "tsql/catalog/catalog.h"
#include "tsql/functions/functions.h"
#include "tsql/run/care.h"

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

TEST_F(CatalogChangesTest, LeaveTheFileSound) {
    UseStatementTransactions();
    Run("create table k (id int primary key, code varchar(5) constraint UQ_k unique) "
        "create table c (id int references k (id) on update cascade, code varchar(5) references k (code), "
        "r int references k (id) on delete set null on update cascade)");
    Run("insert into k values (1, 'a'), (2, 'b'), (3, 'c') insert into c values (1, 'a', 3), (2, 'b', 2)");
    Run("alter table k drop constraint UQ_k");
    EXPECT_EQ(Run("update k set id = id + 1"), "");
    EXPECT_EQ(Run("delete from k where code = 'c'"), "");
    EXPECT_EQ(Run("select * into made from k alter table made add primary key (id)"), "");
    EXPECT_EQ(Run("update made set id = id + 1 select id from made"), "id:int\n3\n4");
    EXPECT_EQ(Run("select id, r from c order by id"), "id:int r:int\n2|NULL\n3|3");
    session_.reset();
    EXPECT_EQ(FindDamage(Path(), CareOptions{&collation_}), std::vector<std::string>());
}

TEST_F(CatalogChangesTest, LeaveSqlitesTablesClosedWhenTheyFail) {
    Run("create table t (a int)");
    session_.reset();
    FunctionServices services;
    services.collation = &collation_;
    Database database;
    database.Open(Path(), false, 0);
    RegisterFunctions(database.Handle(), services);
    Catalog catalog(database);
    catalog.Refresh();
    const TableInfo table = *catalog.FindTable("t");
    database.Run("PRAGMA query_only = ON");
    EXPECT_THROW(catalog.ChangeTable(table, true), SqlError);
    PreparedStatement open = database.Prepare("PRAGMA writable_schema");
    ASSERT_TRUE(database.Step(open));
    EXPECT_EQ(open.Int(0), 0);
}

// Hands on what a batch gives, and does something else when a result begins.
class InterruptedSink final : public TextSink {
  public:
    InterruptedSink(int result, std::function<void()> work) : left_(result), work_(std::move(work)) {}
    void BeginResult(const std::vector<ResultColumn>& columns) override {
        if (--left_ == 0) work_();
        TextSink::BeginResult(columns);
    }

  private:
    int left_;
    std::function<void()> work_;
};

class ReadingTest : public CatalogChangesTest {
  protected:
    // What a batch reads while another session runs a batch of its own at the beginning of the first result.
    std::string ReadBeside(std::string_view batch, std::string_view change) {
        const auto other = Another();
        std::string failed;
        InterruptedSink sink(1, [&] { failed = RunOn(*other, change); });
        const ExecutionReport report = First().Execute(batch, sink);
        EXPECT_EQ(failed, "");
        return sink.Text() + (report.errors.empty() ? "" : "\nerror " + report.errors.front().text);
    }
};

TEST_F(ReadingTest, GivesAnAlteredColumnItsNewType) {
    Run("create table t (id int primary key, a int) insert into t values (1, 5)");
    EXPECT_EQ(ReadBeside("select a from t select a from t",
                         "alter table t alter column a varchar(20) update t set a = 'zz' where id = 1"),
              "a:int\n5\n--\na:varchar(20)\nzz");
}

TEST_F(ReadingTest, KnowsWhatHasBeenAddedSince) {
    Run("create table t (id int primary key) insert into t values (1)");
    Run("create procedure p as select 'old' as x");
    const std::string text = ReadBeside(
        "select 1 as first "
        "select * from t "
        "exec('select b from t') "
        "select a from made "
        "if object_id('made') is not null select 'made' as y "
        "exec('if exists (select 1 from t where b = 7) select b + 1 as c from t') "
        "exec p",
        "alter table t add b int not null default 7 create table made (a int) insert into made values (3) "
        "exec('alter procedure p as select ''new'' as x')");
    EXPECT_EQ(text,
              "first:int\n1\n--\nid:int b:int\n1|7\n--\nb:int\n7\n--\na:int\n3\n--\ny:varchar(4)\nmade\n--\n"
              "c:int\n8\n--\nx:varchar(3)\nnew");
}

TEST_F(ReadingTest, SeesChangesInALoopAndThroughACursor) {
    Run("create table t (a int) insert into t values (1)");
    EXPECT_EQ(ReadBeside("declare c cursor local for select * from t "
                         "declare @i int = 0 "
                         "while @i < 2 begin select * from t set @i = @i + 1 end "
                         "open c fetch next from c",
                         "alter table t add b int not null default 2"),
              "a:int\n1\n--\na:int b:int\n1|2\n--\na:int b:int\n1|2");
}

TEST_F(ReadingTest, HoldsWhatATransactionOfTemporaryTablesHasRead) {
    Run("create table t (a int) insert into t values (1) create table #t (a int)");
    EXPECT_EQ(ReadBeside("begin transaction insert into #t values (1) select 0 as z select * from t "
                         "select * from t commit",
                         "alter table t add b int not null default 2"),
              "z:int\n0\n--\na:int b:int\n1|2\n--\na:int b:int\n1|2");
}

// A wait is no moment of reading: what comes behind it is what is there then.
TEST_F(ReadingTest, AfterAWaitIsOfThatTime) {
    Run("create table t (a int) insert into t values (1)");
    const auto other = Another();
    SessionOptions options = Options();
    int asked = 0;
    options.now = [&] {
        if (++asked == 1) RunOn(*other, "update t set a = 2");
        return *automation::DateTime::Parse("2026-01-31 08:09:10.123");
    };
    Session session(options);
    EXPECT_EQ(RunOn(session, "waitfor time '08:09:10.123' select a from t"), "a:int\n2");
    EXPECT_EQ(asked, 1);
}

}  // namespace
}  // namespace vicenter::tsql::engine
