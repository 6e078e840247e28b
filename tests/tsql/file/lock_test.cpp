// by hand
// Locks on an account set that nobody else in the process can drop, and that keep everybody else out.

#include <sstream>

#ifndef _WIN32
#include <fcntl.h>
#include <unistd.h>
#endif

#include "tests/tsql/file/file_fixture.h"
#include "tsql/sqlite/lock_pause.h"

namespace vicenter::tsql::engine {
namespace {

#ifdef _WIN32
constexpr const char* kSqlitesOwn = "win32";
#else
constexpr const char* kSqlitesOwn = "unix";
#endif

// A connection of another SQLite in this process, as a host may have one: with SQLite's own locks.
class ForeignConnection {
  public:
    explicit ForeignConnection(const std::string& path) {
        EXPECT_EQ(SQLITE_OK, sqlite3_open_v2(path.c_str(), &handle_, SQLITE_OPEN_READWRITE, kSqlitesOwn));
    }
    ForeignConnection(const ForeignConnection&) = delete;
    ForeignConnection& operator=(const ForeignConnection&) = delete;
    ~ForeignConnection() { sqlite3_close(handle_); }
    int Run(const char* sql) { return sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr); }

  private:
    sqlite3* handle_ = nullptr;
};

TEST_F(SetFileTest, What_is_opened_and_closed_beside_an_open_session_drops_no_lock) {
    const long count = LongRuns() ? 10000 : 150;
    MakeTable();
    constexpr long kOthers = 1000000;
    OtherProcess other(Path(), kOthers, count, 60000, Path() + ".answers");
    std::set<long> acknowledged;
    std::string refused;
    for (long number = 0; number < count || other.Runs(); ++number) {
        OpenAndCloseAll();
        const std::string refusal = Run("insert into t values(" + std::to_string(number) + ")");
        if (refusal.empty()) {
            acknowledged.insert(number);
        } else {
            refused += std::to_string(number) + ": " + refusal + "\n";
        }
        OpenAndCloseAll();
    }
    EXPECT_EQ(other.Wait(), 0);
    acknowledged.merge(other.Acknowledged());
    EXPECT_GE(acknowledged.size(), static_cast<std::size_t>(2 * count)) << refused;
    session_.reset();
    EXPECT_EQ(Stored(), acknowledged);
    EXPECT_EQ(Integrity(), "ok");
}

TEST_F(SetFileTest, A_killed_writer_leaves_all_that_it_was_told_is_stored_and_no_lock) {
    MakeTable();
    constexpr long kOthers = 1000000;
    for (std::size_t round = 1; round <= 3; ++round) {
        std::set<long> acknowledged;
        {
            OtherProcess other(Path(), kOthers * static_cast<long>(round), 100000, 60000,
                               Path() + ".answers");
            while (other.Runs() && acknowledged.size() < 5 * round)
                acknowledged = other.Acknowledged();
            other.Kill();
            EXPECT_EQ(other.Wait(), -1);
            acknowledged = other.Acknowledged();
        }
        EXPECT_GE(acknowledged.size(), 5 * round);
        SessionOptions impatient = Existing();
        impatient.lockTimeoutMilliseconds = 0;
        Session next(impatient);
        EXPECT_EQ(RunOn(next, "insert into t values(" + std::to_string(round) + ")"), "");
        const std::set<long> stored = Stored();
        for (const long number : acknowledged)
            EXPECT_EQ(stored.count(number), 1U) << number;
    }
    session_.reset();
    EXPECT_EQ(Integrity(), "ok");
}

TEST(LockPause, Who_has_waited_long_asks_more_often_than_who_has_just_come) {
    using std::chrono::microseconds;
    using std::chrono::milliseconds;
    constexpr milliseconds kPatience(4000);
    // A lock that is held for a moment is asked for again in a moment.
    EXPECT_EQ(LockPause(0, microseconds(0), kPatience), milliseconds(1));
    const auto soon = LockPause(12, milliseconds(160), kPatience);
    EXPECT_GT(soon, milliseconds(20));
    EXPECT_LT(LockPause(100, milliseconds(2000), kPatience), soon * 2 / 3);
    EXPECT_LE(LockPause(400, milliseconds(3800), kPatience), milliseconds(2));
    // Whoever would wait for a day is put off no longer after some seconds.
    EXPECT_EQ(LockPause(1000000, std::chrono::hours(1), std::chrono::hours(24)), milliseconds(1));
    EXPECT_EQ(LockPause(3, milliseconds(1), milliseconds(0)), milliseconds(1));
}

TEST_F(SetFileTest, A_session_holds_its_lock_through_foreign_closes) {
    MakeTable();
    UseStatementTransactions();
    ASSERT_EQ(Run("begin tran insert into t values(1)"), "");
    OpenAndCloseAll();
    EXPECT_EQ(Others(2, 1, 0), 1);
    EXPECT_EQ(Run("commit"), "");
    EXPECT_EQ(Others(2, 1, 0), 0);
    EXPECT_EQ(Stored(), (std::set<long>{1, 2}));
}

TEST_F(SetFileTest, The_log_of_an_idle_session_is_not_taken_away) {
    MakeTable();
    OpenAndCloseAll();
    ASSERT_EQ(Others(1, 3), 0);
    ASSERT_TRUE(std::filesystem::exists(Path() + "-wal"));
    EXPECT_EQ(Run("insert into t values(9)"), "");
    EXPECT_EQ(Stored(), (std::set<long>{1, 2, 3, 9}));
}

TEST_F(SetFileTest, Another_sqlite_in_the_process_is_kept_out_and_keeps_out) {
    MakeTable();
    UseStatementTransactions();
    SessionOptions impatient = Existing();
    impatient.lockTimeoutMilliseconds = 0;
    Session other(impatient);
    ForeignConnection foreign(Path());
    ASSERT_EQ(foreign.Run("BEGIN IMMEDIATE; INSERT INTO t VALUES(1)"), SQLITE_OK);
    EXPECT_EQ(RunOn(other, "insert into t values(2)").substr(0, 10), "error 1222");
    ASSERT_EQ(foreign.Run("COMMIT"), SQLITE_OK);
    EXPECT_EQ(RunOn(other, "insert into t values(2)"), "");
    ASSERT_EQ(Run("begin tran insert into t values(3)"), "");
    EXPECT_EQ(foreign.Run("BEGIN IMMEDIATE"), SQLITE_BUSY);
    ASSERT_EQ(Run("commit"), "");
    EXPECT_EQ(foreign.Run("INSERT INTO t VALUES(4)"), SQLITE_OK);
    EXPECT_EQ(Stored(), (std::set<long>{1, 2, 3, 4}));
}

TEST_F(SetFileTest, Sessions_that_end_leave_the_locks_of_another_sqlite_in_the_process_alone) {
    MakeTable();
    session_.reset();
    ForeignConnection foreign(Path());
    ASSERT_EQ(foreign.Run("BEGIN IMMEDIATE; INSERT INTO t VALUES(1)"), SQLITE_OK);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(Stored(), std::set<long>());
    EXPECT_EQ(Others(2, 1, 0), 1);
    ASSERT_EQ(foreign.Run("COMMIT"), SQLITE_OK);
    EXPECT_EQ(Others(2, 1, 0), 0);
    EXPECT_EQ(Stored(), (std::set<long>{1, 2}));
}

#ifndef _WIN32  // whose files are counted, and locked from beside
TEST_F(SetFileTest, Descriptors_do_not_pile_up) {
    const auto open = [] {
        std::size_t count = 0;
        for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
            ++count;
        return count;
    };
    MakeTable();
    session_.reset();
    const std::size_t before = open();
    {
        ForeignConnection foreign(Path());
        ASSERT_EQ(foreign.Run("SELECT * FROM t"), SQLITE_OK);
        for (int i = 0; i < 20; ++i)
            Stored();
        EXPECT_LT(open(), before + 10);
    }
    Stored();
    EXPECT_EQ(open(), before);
}

// A checkpoint that another has overtaken must not take new frames for those that it has brought home.
TEST_F(SetFileTest, No_log_is_started_over_while_a_checkpoint_runs) {
    MakeTable();
    ASSERT_EQ(Run("insert into t values(1)"), "");
    ASSERT_TRUE(First().BringHome());
    ASSERT_EQ(Run("insert into t values(2)"), "");
    // All is home, so that the next writer would start the log over; and a checkpoint is at work elsewhere.
    ForeignConnection foreign(Path());
    ASSERT_EQ(foreign.Run("PRAGMA wal_checkpoint(PASSIVE)"), SQLITE_OK);
    const std::int64_t before = LogBytes();
    const int index = open((Path() + "-shm").c_str(), O_RDWR | O_CLOEXEC);
    constexpr off_t kCheckpointByte = 121;
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = kCheckpointByte;
    lock.l_len = 1;
    ASSERT_EQ(fcntl(index, F_OFD_SETLK, &lock), 0);
    EXPECT_EQ(Run("insert into t values(3)"), "");
    EXPECT_GT(LogBytes(), before);
    EXPECT_FALSE(First().BringHome());
    close(index);
    EXPECT_TRUE(First().BringHome());
    EXPECT_EQ(LogBytes(), 0);
    EXPECT_EQ(Stored(), (std::set<long>{1, 2, 3}));
}
#endif

TEST_F(SetFileTest, No_checkpoint_runs_while_another_writes) {
    MakeTable();
    ASSERT_EQ(Run("insert into t values(1)"), "");
    ForeignConnection foreign(Path());
    ASSERT_EQ(foreign.Run("BEGIN IMMEDIATE"), SQLITE_OK);
    EXPECT_FALSE(First().BringHome());
    ASSERT_EQ(foreign.Run("COMMIT"), SQLITE_OK);
    EXPECT_TRUE(First().BringHome());
}

}  // namespace
}  // namespace vicenter::tsql::engine
