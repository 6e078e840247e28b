// by hand
// Account sets and backups on a medium that nobody can write: a disc, a snapshot, a share for reading.

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <optional>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/tsql/file/file_fixture.h"
#include "tsql/run/care.h"

namespace {

const char* medium = nullptr;

int OpenOnMedium(const char* path, int flags, unsigned mode) {
    if (medium != nullptr && (flags & (O_WRONLY | O_RDWR | O_CREAT)) != 0 &&
        std::strncmp(path, medium, std::strlen(medium)) == 0) {
        errno = EROFS;
        return -1;
    }
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

unsigned ModeIn(int flags, std::va_list arguments) {
    return (flags & O_CREAT) != 0 ? va_arg(arguments, unsigned) : 0;
}

}  // namespace

// In the place of the system's: what is opened in the medium's folder to be written is refused. SQLite's
// library asks for the one or the other.
extern "C" int open(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const unsigned mode = ModeIn(flags, arguments);
    va_end(arguments);
    return OpenOnMedium(path, flags, mode);
}

extern "C" int open64(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const unsigned mode = ModeIn(flags, arguments);
    va_end(arguments);
    return OpenOnMedium(path, flags, mode);
}

namespace vicenter::tsql::engine {
namespace {

class ReadOnlyMediumTest : public SetFileTest {
  protected:
    class Medium {
      public:
        explicit Medium(const std::filesystem::path& folder) : folder_(folder.string() + "/") {
            medium = folder_.c_str();
        }
        Medium(const Medium&) = delete;
        Medium& operator=(const Medium&) = delete;
        ~Medium() { medium = nullptr; }

      private:
        std::string folder_;
    };

    void SetUp() override {
        SetFileTest::SetUp();
        MakeTable();
        ASSERT_EQ(Run("insert into t values(7)"), "");
        session_.reset();
    }
    bool HasLog() const {
        return std::filesystem::exists(Path() + "-wal") || std::filesystem::exists(Path() + "-shm");
    }
};

TEST_F(ReadOnlyMediumTest, A_set_is_read_there_and_nothing_is_made_beside_it) {
    const Medium readOnly(folder_);
    {
        Session reader(Existing());
        EXPECT_EQ(RunOn(reader, "select a from t"), "a:int\n7");
        EXPECT_EQ(RunOn(reader, "select a into #own from t insert into #own values(8) select a from #own"),
                  "a:int\n7\n8");
        EXPECT_EQ(RunOn(reader, "insert into t values(1)").substr(0, 10), "error 3906");
        EXPECT_EQ(RunOn(reader, "select a from t"), "a:int\n7");
        EXPECT_FALSE(reader.IsStale());
        EXPECT_TRUE(reader.BringHome());
    }
    EXPECT_FALSE(HasLog());
}

TEST_F(ReadOnlyMediumTest, A_backup_is_checked_and_copied_from_there) {
    CareOptions options;
    options.collation = &collation_;
    const std::string copy = folder_.string() + ".copy.vas";
    {
        const Medium readOnly(folder_);
        EXPECT_EQ(FindDamage(Path(), options), std::vector<std::string>{});
        CopyAccountSet(Path(), copy, options);
    }
    std::filesystem::rename(copy, Path());
    EXPECT_EQ(Stored(), std::set<long>{7});
}

TEST_F(ReadOnlyMediumTest, What_others_write_there_by_another_way_is_told) {
    std::optional<Session> reader;
    {
        const Medium readOnly(folder_);
        reader.emplace(Existing());
        EXPECT_EQ(RunOn(*reader, "select a from t"), "a:int\n7");
    }
    ASSERT_EQ(Others(100, 1), 0);
    EXPECT_EQ(RunOn(*reader, "insert into #none values(1)").substr(0, 10), "error 5120");
}

TEST_F(ReadOnlyMediumTest, A_set_whose_log_did_not_come_home_is_not_read_without_it) {
    std::ofstream(Path() + "-wal") << "saved lines";
    const Medium readOnly(folder_);
    EXPECT_THROW(Session{Existing()}, SqlError);
}

}  // namespace
}  // namespace vicenter::tsql::engine
