#pragma once

// The files of an account set as SQLite sees them.
//
// On POSIX systems SQLite's own locks are record locks of the process: whoever closes any descriptor of the
// file (a file dialog, a backup program's library, another SQLite of the host) drops them all, and two
// writers then damage the set. Here every connection locks through an open file description of its own, on
// the same bytes, so that SQLite elsewhere is kept out as ever and nobody else can drop them.

#include <chrono>

namespace vicenter::tsql::engine {

// The name for sqlite3_open_v2; registers the file system when it is first asked for. None: SQLite's own.
const char* AccountSetFileSystem();

// While SQLite cannot get at the log of an account set it sleeps in pieces, for ten seconds in all and
// without asking its busy handler. While one of these lives, the calls that this thread makes sleep as it
// says.
class NapRule {
  public:
    using Nap = void (*)(void* caller, std::chrono::microseconds asked);
    NapRule(Nap nap, void* caller);
    NapRule(const NapRule&) = delete;
    NapRule& operator=(const NapRule&) = delete;
    ~NapRule();

    // Sleeps by the rule that holds; false when there is none.
    static bool Apply(std::chrono::microseconds asked);

  private:
    Nap nap_;
    void* caller_;
    NapRule* before_;
};

// What became of the file since a connection opened it.
enum class FileState : int {
    kSame,
    kGone,         // deleted or moved away
    kReplaced,     // another file stands in its place
    kOverwritten,  // its content is another, and no checkpoint has written it
    kHeldAbroad,   // others work on the file that stood in its place before
    kLogLost,      // the log or its index was deleted or replaced beside it
    kLogAbroad,    // others work on it with another log: by another name, or theirs was deleted
};

// A file control of the main file: fills in an int, a FileState. Not answered by SQLite's own file systems.
inline constexpr int kAskFileState = 0x56430001;

}  // namespace vicenter::tsql::engine
