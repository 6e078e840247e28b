#pragma once

// Account sets with a table t of numbers, and other processes that write into them.

#include <csignal>
#include <cstdio>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/tsql/engine_fixture.h"

extern char** environ;

namespace vicenter::tsql::engine {

// A running set_writer.
class OtherProcess {
  public:
    OtherProcess(const std::string& set, long first, long count, int timeout, std::string answers)
        : answers_(std::move(answers)) {
        std::vector<std::string> words = {SET_WRITER, set, std::to_string(first), std::to_string(count),
                                          std::to_string(timeout)};
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, answers_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        EXPECT_EQ(0, posix_spawn(&process_, SET_WRITER, &actions, nullptr, arguments.data(), environ));
        posix_spawn_file_actions_destroy(&actions);
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;
    ~OtherProcess() { Wait(); }

    bool Runs() {
        if (!ended_ && waitpid(process_, &status_, WNOHANG) == process_) ended_ = true;
        return !ended_;
    }
    int Wait() {
        if (!ended_) {
            EXPECT_EQ(process_, waitpid(process_, &status_, 0));
            ended_ = true;
        }
        return WIFEXITED(status_) ? WEXITSTATUS(status_) : -1;
    }
    std::set<long> Acknowledged() const {
        std::ifstream file(answers_);
        std::set<long> numbers;
        for (long number = 0; file >> number;)
            numbers.insert(number);
        return numbers;
    }

  private:
    std::string answers_;
    pid_t process_ = 0;
    bool ended_ = false;
    int status_ = 0;
};

class SetFileTest : public EngineTest {
  protected:
    void MakeTable() { ASSERT_EQ(Run("create table t (a int not null primary key)"), ""); }
    int Others(long first, long count, int timeout = 60000) {
        return OtherProcess(Path(), first, count, timeout, Path() + ".answers").Wait();
    }
    SessionOptions Existing() const {
        SessionOptions options = Options();
        options.create = false;
        return options;
    }
    std::set<long> Stored() {
        TextSink sink;
        Session session(Existing());
        EXPECT_TRUE(session.Execute("select a from t", sink).errors.empty());
        std::set<long> numbers;
        std::istringstream text(sink.Text());
        std::string header;
        std::getline(text, header);
        for (long number = 0; text >> number;)
            numbers.insert(number);
        return numbers;
    }
    // What SQLite itself says of the file.
    std::string Integrity(const char* fileSystem = nullptr) {
        sqlite3* handle = nullptr;
        std::string text;
        EXPECT_EQ(SQLITE_OK, sqlite3_open_v2(Path().c_str(), &handle, SQLITE_OPEN_READWRITE, fileSystem));
        const auto take = [](void* to, int, char** values, char**) {
            *static_cast<std::string*>(to) += values[0];
            return 0;
        };
        sqlite3_exec(handle, "PRAGMA integrity_check", take, &text, nullptr);
        sqlite3_close(handle);
        return text;
    }
    // What a file dialog, a backup program's library or a virus scanner does.
    void OpenAndCloseAll() const {
        for (const char* end : {"", "-wal", "-shm"}) {
            const int descriptor = open((Path() + end).c_str(), O_RDONLY | O_CLOEXEC);
            if (descriptor >= 0) close(descriptor);
        }
    }
    std::int64_t LogBytes() const {
        std::error_code none;
        const auto bytes = std::filesystem::file_size(Path() + "-wal", none);
        return none ? 0 : static_cast<std::int64_t>(bytes);
    }
};

// Long runs stand behind an environment variable.
inline bool LongRuns() {
    return std::getenv("VICENTER_LONG") != nullptr;
}

}  // namespace vicenter::tsql::engine
