#pragma once

// Descriptors of an account set's files, and locks that belong to the open file description behind them.
//
// Any thread. Closing a descriptor drops the record locks that others in this process, such as a host's own
// SQLite, hold on the same file. So a descriptor is closed only when no other one of that file is open; until
// then it is kept, without locks, and used again.

#include <cstdint>
#include <string>

#include <sys/types.h>

namespace vicenter::tsql::engine {

// A descriptor above those of the standard streams, closed in programs that this one starts; -1 and errno
// when the file cannot be opened.
int OpenDescriptor(const std::string& path, int flags, mode_t mode);
// Gives up the locks and, when that harms nobody, the descriptor.
void RetireDescriptor(int descriptor);

enum class LockKind { kNone, kRead, kWrite };

// Never waits. SQLITE_OK, SQLITE_BUSY, or a failure.
int SetLock(int descriptor, LockKind kind, std::int64_t begin, std::int64_t bytes);
// What others hold against a lock for writing; their strongest.
LockKind OthersLock(int descriptor, std::int64_t begin, std::int64_t bytes);

}  // namespace vicenter::tsql::engine
