#pragma once

// The main file of an account set: reading and writing, SQLite's locks on it, and whether it is still the
// file that was opened. Used by one connection on one thread.

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <sys/stat.h>

#include "tsql/sqlite/file_system.h"
#include "tsql/sqlite/posix_wal_index.h"

namespace vicenter::tsql::engine {

class AccountSetFile {
  public:
    // flags as in sqlite3_open_v2; falls back to reading alone where writing is not allowed. SQLITE_OK, or
    // the failure.
    static int Open(const char* path, int flags, std::unique_ptr<AccountSetFile>& file);
    AccountSetFile(std::string path, int descriptor, bool readOnly, bool created);
    AccountSetFile(const AccountSetFile&) = delete;
    AccountSetFile& operator=(const AccountSetFile&) = delete;
    ~AccountSetFile();

    bool ReadOnly() const { return readOnly_; }
    // It lies on a medium that nobody can write here, without a log: it is read as it stands.
    bool IsFrozen() const { return frozen_.has_value(); }
    int LockLevel() const { return level_; }
    int LastError() const { return lastError_; }
    int Read(void* bytes, int count, std::int64_t offset);
    int Write(const void* bytes, int count, std::int64_t offset);
    int Truncate(std::int64_t bytes);
    int Sync(int flags);
    int Size(std::int64_t* bytes);
    int Lock(int level);
    int Unlock(int level);
    int CheckReservedLock(int* reserved);
    // Opened by the first of its regions that SQLite asks for.
    int MapIndex(int region, int bytes, bool extend, void volatile** memory);
    WalIndex& Index() { return index_; }

    FileState State();
    // Whether the log that stands beside the file is to be left as it is when the connection closes.
    bool LeavesLog();

  private:
    // What tells one content of the file from another, as far as that can be told quickly.
    struct Content {
        std::int64_t bytes = 0;
        std::uint64_t sample = 0;
        bool operator==(const Content&) const = default;
    };
    struct Seen {
        WalIndex::Progress progress{};
        struct timespec written {};
        Content content;
    };

    struct Log {
        dev_t device = 0;
        ino_t number = 0;
        std::int64_t bytes = 0;
    };

    bool OthersWorkElsewhere() const;
    int FindPlace();
    bool IsLogComplete() const;
    std::optional<Log> LogThere() const;
    bool IsLogLost() const;
    bool HasLogOrJournal() const;
    void Freeze();
    Content Sampled() const;
    bool OverwrittenSince(const struct stat& now);
    void PutLogAside();
    int Failed(int code);

    std::string path_;
    int descriptor_;
    bool readOnly_;
    bool syncFolder_;  // the file has been made and its name may not be on the disk yet
    int level_ = 0;
    int lastError_ = 0;
    WalIndex index_;
    bool placed_ = false;  // it has been seen that nobody works with another log
    std::optional<std::chrono::steady_clock::time_point>
        alone_;               // since when others were seen without an index
    std::optional<Log> log_;  // the one that SQLite has opened
    FileState state_ = FileState::kSame;
    std::optional<Seen> seen_;
    std::optional<struct stat> frozen_;  // as it was when it was opened
};

}  // namespace vicenter::tsql::engine
