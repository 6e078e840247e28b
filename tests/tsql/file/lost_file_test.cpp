// by hand
// Account sets that are moved, deleted, replaced or overwritten under a session, made read-only for a while,
// or named oddly.

#include <sstream>

#include <sys/stat.h>
#include <unistd.h>

#include "tests/tsql/file/file_fixture.h"
#include "tsql/sqlite/file_system.h"

namespace vicenter::tsql::engine {
namespace {

using std::filesystem::copy_options;

// Gives the folder to a user without rights and is that user for a while, when the administrator tests.
class AnotherUser {
  public:
    explicit AnotherUser(const std::filesystem::path& folder) {
        constexpr uid_t kNobody = 65534;
        if (geteuid() != 0) return;
        EXPECT_EQ(chown(folder.c_str(), kNobody, kNobody), 0);
        EXPECT_EQ(seteuid(kNobody), 0);
        changed_ = true;
    }
    AnotherUser(const AnotherUser&) = delete;
    AnotherUser& operator=(const AnotherUser&) = delete;
    ~AnotherUser() {
        if (!changed_) return;
        EXPECT_EQ(seteuid(0), 0);
    }

  private:
    bool changed_ = false;
};

// The account sets' own file system, which counts how often it is asked what became of the main file.
class CountedLooks {
  public:
    CountedLooks() {
        sqlite3_vfs* const base = sqlite3_vfs_find(AccountSetFileSystem());
        system_ = *base;
        system_.zName = "counted";
        system_.pAppData = base;
        system_.xOpen = [](sqlite3_vfs* self, const char* path, sqlite3_file* file, int flags, int* opened) {
            auto* const real = static_cast<sqlite3_vfs*>(self->pAppData);
            const int code = real->xOpen(real, path, file, flags, opened);
            if (code != SQLITE_OK || (flags & SQLITE_OPEN_MAIN_DB) == 0) return code;
            real_ = file->pMethods;
            counted_ = *real_;
            counted_.xFileControl = [](sqlite3_file* of, int operation, void* argument) {
                if (operation == kAskFileState) ++looks_;
                return real_->xFileControl(of, operation, argument);
            };
            file->pMethods = &counted_;
            return code;
        };
        sqlite3_vfs_register(&system_, 0);
        looks_ = 0;
    }
    CountedLooks(const CountedLooks&) = delete;
    CountedLooks& operator=(const CountedLooks&) = delete;
    ~CountedLooks() { sqlite3_vfs_unregister(&system_); }
    const char* Name() const { return system_.zName; }
    int Count() const { return looks_; }

  private:
    sqlite3_vfs system_;
    static inline const sqlite3_io_methods* real_ = nullptr;
    static inline sqlite3_io_methods counted_{};
    static inline int looks_ = 0;
};

class LostFileTest : public SetFileTest {
  protected:
    std::string Elsewhere() const { return (folder_ / "other.vas").string(); }
    // Another account set with the row 77, closed.
    void MakeAnother() {
        SessionOptions options = Options();
        options.path = Elsewhere();
        Session other(options);
        ASSERT_EQ(RunOn(other, "create table t (a int not null primary key) insert into t values(77)"), "");
    }
    static std::string Why(const std::string& result) {
        return result.rfind("error 5120", 0) == 0 ? result.substr(result.find("\": ") + 3) : result;
    }
};

TEST_F(LostFileTest, A_deleted_set_takes_no_more_statements) {
    MakeTable();
    std::filesystem::remove(Path());
    EXPECT_EQ(Why(Run("insert into t values(1)")), "账套文件已被删除或移走，请重新打开账套.");
    EXPECT_EQ(Why(Run("select a from t")), "账套文件已被删除或移走，请重新打开账套.");
    EXPECT_TRUE(First().IsStale());
}

TEST_F(LostFileTest, A_read_just_before_lets_no_write_go_nowhere) {
    MakeTable();
    EXPECT_EQ(Run("select a from t"), "a:int");
    std::filesystem::remove(Path());
    EXPECT_EQ(Why(Run("insert into t values(1)")), "账套文件已被删除或移走，请重新打开账套.");
}

TEST_F(LostFileTest, One_who_only_reads_is_told_too) {
    MakeTable();
    EXPECT_EQ(Run("select a from t"), "a:int");
    std::filesystem::remove(Path());
    const auto begin = std::chrono::steady_clock::now();
    std::string answer;
    do {
        answer = Run("select a from t");
    } while (answer == "a:int" && std::chrono::steady_clock::now() - begin < std::chrono::seconds(60));
    EXPECT_EQ(Why(answer), "账套文件已被删除或移走，请重新打开账套.");
}

TEST_F(LostFileTest, Questions_in_a_row_look_at_the_file_once_a_millisecond) {
    const CountedLooks looks;
    SessionOptions options = Options();
    options.fileSystem = looks.Name();
    Session session(options);
    ASSERT_EQ(RunOn(session, "create table t (a int not null primary key) insert into t values(7)"), "");
    const int before = looks.Count();
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 2000; ++i)
        ASSERT_EQ(RunOn(session, "select a from t where a = 7"), "a:int\n7");
    const auto taken = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(looks.Count() - before, 1);
    EXPECT_LE(looks.Count() - before, taken / std::chrono::milliseconds(1) + 1);
    // A batch that writes looks before it begins and before it says that it is done.
    const int quiet = looks.Count();
    ASSERT_EQ(RunOn(session, "insert into t values(8)"), "");
    EXPECT_GE(looks.Count() - quiet, 2);
}

TEST_F(LostFileTest, A_set_deleted_while_a_batch_runs_is_not_told_to_be_saved) {
    class Deleting final : public TextSink {
      public:
        explicit Deleting(std::string path) : path_(std::move(path)) {}
        void BeginResult(const std::vector<ResultColumn>& columns) override {
            TextSink::BeginResult(columns);
            std::filesystem::remove(path_);
        }

      private:
        std::string path_;
    };
    MakeTable();
    Deleting sink(Path());
    const ExecutionReport report =
        First().Execute("insert into t values(1) select a from t insert into t values(2)", sink);
    ASSERT_EQ(report.errors.size(), 1U);
    EXPECT_EQ(report.errors.front().number, 5120);
}

TEST_F(LostFileTest, A_set_that_another_was_renamed_over_is_told_and_the_new_one_stays_whole) {
    MakeAnother();
    MakeTable();
    ASSERT_EQ(Run("insert into t values(1)"), "");
    std::filesystem::rename(Elsewhere(), Path());
    // Its log is still the old one's: nobody may open the two together.
    try {
        Session early(Existing());
        ADD_FAILURE() << "opened";
    } catch (const SqlError& error) {
        EXPECT_EQ(error.Number(), 5120) << error.Text();
    }
    EXPECT_EQ(Why(Run("insert into t values(2)")), "账套文件已被另一个文件替换，请重新打开账套.");
    session_.reset();
    EXPECT_EQ(Stored(), std::set<long>{77});
    EXPECT_EQ(Integrity(), "ok");
}

TEST_F(LostFileTest, A_set_that_is_moved_away_takes_along_what_stood_in_its_log) {
    MakeTable();
    ASSERT_EQ(Run("insert into t values(1)"), "");
    ASSERT_GT(LogBytes(), 0);
    std::filesystem::rename(Path(), Elsewhere());
    EXPECT_EQ(Run("select a from t").substr(0, 10), "error 5120");
    session_.reset();
    std::filesystem::rename(Elsewhere(), Path());
    EXPECT_EQ(Stored(), std::set<long>{1});
}

TEST_F(LostFileTest, A_copy_over_an_open_set_is_told_and_counts) {
    MakeAnother();
    for (const bool home : {true, false}) {
        session_.reset();
        std::filesystem::remove(Path());
        MakeTable();
        ASSERT_EQ(Run("insert into t values(1)"), "");
        if (home) {
            ASSERT_TRUE(First().BringHome());
        }
        // Statements before it look at the file; a checkpoint is no reason for alarm.
        EXPECT_EQ(Run("select a from t"), "a:int\n1");
        if (!home) {
            ASSERT_EQ(Run("insert into t values(2)"), "");
        }
        std::filesystem::copy_file(Elsewhere(), Path(), copy_options::overwrite_existing);
        EXPECT_EQ(Why(Run("insert into t values(3)")), "账套文件的内容已被其他程序覆盖，请重新打开账套.");
        session_.reset();
        EXPECT_EQ(Stored(), std::set<long>{77});
        EXPECT_EQ(Integrity(), "ok");
        EXPECT_EQ(std::filesystem::exists(Path() + "-wal.replaced1"), !home);
    }
}

TEST_F(LostFileTest, Checkpoints_and_new_times_are_no_reason_for_alarm) {
    MakeTable();
    const auto other = Another();
    for (int i = 0; i < 30; ++i) {
        ASSERT_EQ(Run("insert into t values(" + std::to_string(i) + ")"), "");
        ASSERT_EQ(RunOn(*other, "insert into t values(" + std::to_string(1000 + i) + ")"), "");
        if (i % 3 == 0) {
            EXPECT_TRUE(other->BringHome());
        }
        if (i % 7 == 0) {
            EXPECT_TRUE(First().BringHome());
        }
        if (i % 5 == 0)
            std::filesystem::last_write_time(Path(), std::filesystem::file_time_type::clock::now());
        if (i % 4 == 0) Others(2000 + i, 1);
    }
    EXPECT_EQ(Run("select count(*) as n from t"), "n:int\n68");
}

TEST_F(LostFileTest, A_set_that_was_read_only_for_a_while_can_be_written_again) {
    // The administrator may write anything: another user for the time of the test.
    const AnotherUser user(folder_);
    MakeTable();
    session_.reset();
    chmod(Path().c_str(), 0444);
    {
        Session reader(Existing());
        EXPECT_EQ(RunOn(reader, "select a from t"), "a:int");
        EXPECT_EQ(RunOn(reader, "insert into t values(1)").substr(0, 10), "error 3906");
    }
    chmod(Path().c_str(), 0644);
    EXPECT_EQ(Run("insert into t values(2)"), "");
    session_.reset();
    // Files that an earlier program has left.
    for (const char* end : {"-wal", "-shm"}) {
        std::ofstream(Path() + end).close();
        chmod((Path() + end).c_str(), 0444);
    }
    EXPECT_EQ(Run("insert into t values(1)"), "");
    EXPECT_EQ(Stored(), (std::set<long>{1, 2}));
    struct stat index {};
    ASSERT_EQ(stat((Path() + "-shm").c_str(), &index), 0);
    EXPECT_EQ(index.st_mode & 0600U, 0600U);
}

TEST_F(LostFileTest, A_data_source_is_a_path_whatever_it_looks_like) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder_);
    for (const char* name : {"file:set.vas?mode=ro", ":memory:", "file:a"}) {
        SessionOptions options = Options();
        options.path = name;
        {
            Session session(options);
            EXPECT_EQ(RunOn(session, "create table t (a int) insert into t values(1)"), "") << name;
        }
        EXPECT_TRUE(std::filesystem::exists(folder_ / name)) << name;
    }
    std::filesystem::current_path(before);
    SessionOptions options = Options();
    options.path.clear();
    EXPECT_THROW(Session{options}, SqlError);
}

TEST_F(LostFileTest, Formats_before_the_first_are_not_ours) {
    for (const char* version : {"0", "-1"}) {
        session_.reset();
        std::filesystem::remove(Path());
        MakeTable();
        session_.reset();
        sqlite3* handle = nullptr;
        ASSERT_EQ(SQLITE_OK, sqlite3_open(Path().c_str(), &handle));
        sqlite3_exec(handle, (std::string("PRAGMA user_version = ") + version).c_str(), nullptr, nullptr,
                     nullptr);
        sqlite3_close(handle);
        try {
            Another();
            ADD_FAILURE() << version;
        } catch (const SqlError& error) {
            EXPECT_EQ(error.Number(), 5172);
        }
    }
}

}  // namespace
}  // namespace vicenter::tsql::engine
