// by hand
// Account sets whose log or index is deleted beside them while sessions work, and sets that are used under
// two names at once: two logs for one file.

#include <sys/resource.h>

#include "tests/tsql/file/file_fixture.h"

namespace vicenter::tsql::engine {
namespace {

constexpr std::string_view kTold = "账套文件旁边的 -wal 或 -shm 文件已被删除或替换，请重新打开账套.";
constexpr std::string_view kInUse =
    "账套正在使用中，但使用时的名称不同（硬链接），或旁边的 -wal、-shm 文件已被删除；请先关闭使用它的程序.";

class TwoLogsTest : public SetFileTest {
  protected:
    static std::string Why(const std::string& result) {
        return result.rfind("error 5120", 0) == 0 ? result.substr(result.find("\": ") + 3) : result;
    }
    std::string WhyNotOpened(const std::string& path) const {
        try {
            SessionOptions options = Existing();
            options.path = path;
            Session other(options);
            return RunOn(other, "select a from t");
        } catch (const SqlError& error) {
            return Why("error " + std::to_string(error.Number()) + " " + error.Text());
        }
    }
};

// The ends of the names of what is deleted.
class LostLogTest : public TwoLogsTest, public testing::WithParamInterface<std::vector<std::string>> {
  protected:
    void RemoveBeside() const {
        for (const std::string& end : GetParam())
            ASSERT_TRUE(std::filesystem::remove(Path() + end)) << end;
    }
};

TEST_P(LostLogTest, Is_told_and_nothing_that_was_told_as_stored_is_lost) {
    MakeTable();
    ASSERT_EQ(Run("insert into t values(1)"), "");
    ASSERT_GT(LogBytes(), 0);
    RemoveBeside();
    // Whoever comes meanwhile begins no log of his own.
    EXPECT_EQ(Others(100, 1), 1);
    EXPECT_EQ(Why(Run("insert into t values(2)")), kTold);
    EXPECT_TRUE(First().IsStale());
    session_.reset();
    EXPECT_EQ(Others(200, 2), 0);
    EXPECT_EQ(Run("insert into t values(3)"), "");
    EXPECT_EQ(Stored(), (std::set<long>{1, 3, 200, 201}));
    session_.reset();
    EXPECT_EQ(Integrity(), "ok");
}

TEST_P(LostLogTest, Is_told_to_one_who_only_reads) {
    MakeTable();
    ASSERT_EQ(Run("select a from t"), "a:int");
    RemoveBeside();
    const auto begin = std::chrono::steady_clock::now();
    std::string answer;
    do {
        answer = Run("select a from t");
    } while (answer == "a:int" && std::chrono::steady_clock::now() - begin < std::chrono::seconds(60));
    EXPECT_EQ(Why(answer), kTold);
}

TEST_P(LostLogTest, Is_left_to_whoever_has_begun_another_since) {
    MakeTable();
    ASSERT_EQ(Run("insert into t values(1)"), "");
    ASSERT_TRUE(First().BringHome());
    RemoveBeside();
    // A SQLite that knows nothing of this takes the file for its own.
    sqlite3* foreign = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open_v2(Path().c_str(), &foreign, SQLITE_OPEN_READWRITE, "unix"));
    const bool written =
        sqlite3_exec(foreign, "INSERT INTO t VALUES(7)", nullptr, nullptr, nullptr) == SQLITE_OK;
    EXPECT_EQ(Why(Run("insert into t values(2)")), kTold);
    session_.reset();
    sqlite3_close(foreign);
    EXPECT_EQ(Stored(), written ? (std::set<long>{1, 7}) : std::set<long>{1});
    session_.reset();
    EXPECT_EQ(Integrity(), "ok");
}

using Ends = std::vector<std::string>;
INSTANTIATE_TEST_SUITE_P(Deleted, LostLogTest,
                         testing::Values(Ends{"-wal"}, Ends{"-shm"}, Ends{"-wal", "-shm"}),
                         [](const auto& deleted) {
                             std::string name;
                             for (const std::string& end : deleted.param)
                                 name += end.substr(1);
                             return name;
                         });

TEST_F(TwoLogsTest, One_file_is_used_under_one_name_at_a_time) {
    MakeTable();
    ASSERT_EQ(Run("insert into t values(1)"), "");
    const std::string other = (folder_ / "other.vas").string();
    std::filesystem::create_hard_link(Path(), other);
    EXPECT_EQ(WhyNotOpened(other), kInUse);
    EXPECT_EQ(OtherProcess(other, 100, 1, 60000, other + ".answers").Wait(), 1);
    EXPECT_EQ(Run("insert into t values(2)"), "");
    session_.reset();
    EXPECT_EQ(OtherProcess(other, 200, 2, 60000, other + ".answers").Wait(), 0);
    EXPECT_EQ(Stored(), (std::set<long>{1, 2, 200, 201}));
    session_.reset();
    EXPECT_EQ(Integrity(), "ok");
}

TEST_F(TwoLogsTest, An_index_that_finds_no_room_is_a_full_disk) {
    MakeTable();
    session_.reset();
    struct rlimit before {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    struct rlimit small = before;
    small.rlim_cur = 8192;
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string told = WhyNotOpened(Path());
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    signal(SIGXFSZ, handler);
    EXPECT_EQ(told.substr(0, 10), "error 9002") << told;
    EXPECT_EQ(Stored(), std::set<long>());
}

TEST_F(TwoLogsTest, A_link_is_the_file_that_it_leads_to) {
    MakeTable();
    ASSERT_EQ(Run("insert into t values(1)"), "");
    const std::string other = (folder_ / "other.vas").string();
    std::filesystem::create_symlink(Path(), other);
    EXPECT_EQ(WhyNotOpened(other), "a:int\n1");
    EXPECT_EQ(OtherProcess(other, 100, 3, 60000, other + ".answers").Wait(), 0);
    EXPECT_EQ(Run("insert into t values(2)"), "");
    EXPECT_EQ(Stored(), (std::set<long>{1, 2, 100, 101, 102}));
}

}  // namespace
}  // namespace vicenter::tsql::engine
