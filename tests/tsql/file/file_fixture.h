#pragma once

// Account sets with a table t of numbers, and other processes that write into them.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <utility>

#include <sqlite3.h>

#include "platform/system/files.h"
#include "tests/host/program_run.h"
#include "tests/tsql/engine_fixture.h"

namespace vicenter::tsql::engine {

// A running set_writer.
class OtherProcess {
  public:
    OtherProcess(const std::string& set, long first, long count, int timeout, std::string answers)
        : answers_(std::move(answers)),
          program_(SET_WRITER, {set, std::to_string(first), std::to_string(count), std::to_string(timeout)},
                   {}, answers_) {}

    bool Runs() { return program_.Runs(); }
    void Kill() { program_.Kill(); }
    // Its exit code, -1 when it was killed.
    int Wait() { return program_.Wait().code; }
    // The line that a kill has cut short counts for nothing.
    std::set<long> Acknowledged() const {
        std::ifstream file(system::PathFromUtf8(answers_));
        std::set<long> numbers;
        for (std::string line; std::getline(file, line) && !file.eof();) {
            if (line.find_first_not_of("0123456789\r") == std::string::npos) numbers.insert(std::stol(line));
        }
        return numbers;
    }

  private:
    std::string answers_;
    host::test::RunningProgram program_;
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
            const std::ifstream file(system::PathFromUtf8(Path() + end));
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
