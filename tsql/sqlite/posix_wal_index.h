#pragma once

// The index of an account set's write-ahead log: the file `-shm`, mapped into memory, and the locks in it.
// Byte for byte what SQLite's own file system for POSIX makes of it, with locks that belong to the
// connection. Used by one connection on one thread.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vicenter::tsql::engine {

class WalIndex {
  public:
    // Of the account set at that path, open as that descriptor.
    WalIndex(std::string path, int set) : path_(std::move(path)), set_(set) {}
    WalIndex(const WalIndex&) = delete;
    WalIndex& operator=(const WalIndex&) = delete;
    ~WalIndex();

    bool IsOpen() const { return descriptor_ >= 0; }
    // SQLITE_OK, SQLITE_READONLY_CANTINIT when nobody is there who could have filled it, or a failure.
    int Open();
    // Whether others have it open.
    bool IsShared() const;
    // Whether the file that is open still stands in its place.
    bool IsInPlace() const;
    // How long the log must be for what the index tells of it; 0 where it tells nothing.
    std::int64_t LogBytes() const;

    int Map(int region, int bytes, bool extend, void volatile** memory);
    int Lock(int offset, int count, int flags);
    void Close(bool remove);

    // How far the log has been brought into the main file; nothing while that is under way or unknown. The
    // main file is written only while this changes.
    struct Progress {
        std::uint32_t salt[2];
        std::uint32_t frames;  // brought home
        bool operator==(const Progress&) const = default;
    };
    std::optional<Progress> BroughtHome() const;

  private:
    int Attach();
    int Grow(std::int64_t bytes);
    int Acquire(int offset, int count, bool exclusive);
    int Release(int offset, int count);

    std::string path_;
    int set_;
    int descriptor_ = -1;
    bool readOnly_ = false;
    bool attached_ = false;
    int regionBytes_ = 0;
    std::vector<void*> maps_;
    std::size_t mapBytes_ = 0;
    unsigned shared_ = 0;  // a bit for each lock that SQLite holds
    unsigned exclusive_ = 0;
    bool writeForCheckpoint_ = false;  // held beyond what SQLite asked for
    bool checkpointForRestart_ = false;
};

}  // namespace vicenter::tsql::engine
