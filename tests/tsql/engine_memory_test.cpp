// Memory that is refused at any one point of a batch: the batch is done or not done, never half, nothing
// crashes, and the session can be used again.
#include <new>

#include <sqlite3.h>

#include "tests/fakes/refused_memory.h"
#include "tests/tsql/engine_fixture.h"

namespace vicenter::tsql::engine {
namespace {

using fakes::memory::granted;
using fakes::memory::refusals;
using fakes::memory::refused;
using fakes::memory::Refuses;

sqlite3_mem_methods usual;

// SQLite's own allocations count as well.
void WatchSqlite() {
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &usual);
    sqlite3_mem_methods watched = usual;
    watched.xMalloc = [](int bytes) { return Refuses() ? nullptr : usual.xMalloc(bytes); };
    watched.xRealloc = [](void* memory, int bytes) {
        return Refuses() ? nullptr : usual.xRealloc(memory, bytes);
    };
    sqlite3_config(SQLITE_CONFIG_MALLOC, &watched);
}

class NoSink : public ResultSink {
  public:
    void BeginResult(const std::vector<ResultColumn>&) override {}
    void AddRow(std::vector<Value>&) override {}
    void Message(const Diagnostic&) override {}
};

class EngineMemoryTest : public EngineTest {
  protected:
    static void SetUpTestSuite() { WatchSqlite(); }
    ~EngineMemoryTest() override { granted = -1; }

    enum class Outcome { kDone, kRefused, kOtherError };

    // Runs the batch with the n-th request refused.
    Outcome RunRefusing(Session& session, const std::string& batch, long n) {
        NoSink sink;
        refused = false;
        refusals = 1;
        granted = n;
        try {
            const ExecutionReport report = session.Execute(batch, sink);
            granted = -1;
            if (report.errors.empty()) return Outcome::kDone;
            number_ = report.errors.front().number;
            return number_ == 701 ? Outcome::kRefused : Outcome::kOtherError;
        } catch (const std::bad_alloc&) {
            granted = -1;
            return Outcome::kRefused;
        }
    }

    int number_ = 0;
};

TEST_F(EngineMemoryTest, A_batch_is_done_or_not_done_whichever_request_is_refused) {
    ASSERT_EQ(Run("create table t (a int not null primary key, b nvarchar(50) null)\n"
                  "create table log (n int)"),
              "");
    ASSERT_EQ(Run("insert into t values(1, N'甲') insert into t values(2, N'乙') insert into log values(0)"),
              "");
    // As a save: lines go and come, texts in Chinese order, a cursor, a procedure's text.
    const std::string batch =
        "delete from t\n"
        "insert into t values(1, N'差旅费') insert into t values(2, N'办公费') insert into t values(3, "
        "N'差旅费')\n"
        "update t set b = b + N'，' + cast(a as nvarchar(10)) where b like N'%费'\n"
        "declare @n int select @n = count(distinct b) from t where b in (select b from t where a < 9)\n"
        "declare c cursor local for select a from t order by b\n"
        "declare @a int open c fetch next from c into @a\n"
        "while @@fetch_status = 0 begin update log set n = n + 1 fetch next from c into @a end\n"
        "close c deallocate c\n"
        "exec sp_executesql N'update log set n = n + @n', N'@n int', @n = 10";
    int runs = 0;
    for (long n = 0;; n += n < 300 ? 1 : 7) {
        const std::string before = Run("select max(n) as n from log");
        session_ = Another();  // one that has made no plans yet
        const Outcome outcome = RunRefusing(First(), batch, n);
        ASSERT_NE(outcome, Outcome::kOtherError) << "request " << n << ": error " << number_;
        const std::string after = Run("select max(n) as n from log");
        if (outcome == Outcome::kRefused) {
            ASSERT_EQ(after, before) << "request " << n;
        } else {
            ASSERT_NE(after, before) << "request " << n;
        }
        ASSERT_EQ(Run("select count(*) as n from t").substr(0, 6), "n:int\n");
        ++runs;
        if (!refused) break;
    }
    EXPECT_GT(runs, 300);
    EXPECT_EQ(RunOn(*Another(), "select count(*) as n from t"), "n:int\n3");
}

TEST_F(EngineMemoryTest, Opening_an_account_set_fails_cleanly) {
    ASSERT_EQ(Run("create table t (a int)"), "");
    session_.reset();
    for (long n = 0;; ++n) {
        refused = false;
        refusals = 1;
        granted = n;
        bool opened = false;
        try {
            const std::unique_ptr<Session> session = Another();
            granted = -1;
            opened = true;
            EXPECT_EQ(RunOn(*session, "select count(*) as n from t"), "n:int\n0");
        } catch (const std::exception&) {
            granted = -1;
        }
        if (!refused) {
            EXPECT_TRUE(opened);
            break;
        }
    }
}

}  // namespace
}  // namespace vicenter::tsql::engine
