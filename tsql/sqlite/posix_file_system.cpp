// SQLite's file system for POSIX systems with the main file and the index of its log replaced by our own; see
// file_system.h. Logs, journals and temporary files, on which nobody takes locks, are SQLite's.

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tsql/sqlite/file_system.h"
#include "tsql/sqlite/file_system_over.h"
#include "tsql/sqlite/posix_account_set_file.h"

namespace vicenter::tsql::engine {

namespace {

constexpr const char* kName = "vicenter";
constexpr int kSectorBytes = 4096;

struct OpenFile {
    sqlite3_file base;
    AccountSetFile* set;
};

AccountSetFile& SetOf(sqlite3_file* file) {
    return *reinterpret_cast<OpenFile*>(file)->set;
}

// SQLite is C: nothing may fly through it.
template <class Body>
int Guarded(Body body) {
    try {
        return body();
    } catch (...) {
        return SQLITE_IOERR_NOMEM;
    }
}

int Close(sqlite3_file* file) {
    delete std::exchange(reinterpret_cast<OpenFile*>(file)->set, nullptr);
    return SQLITE_OK;
}

int Control(sqlite3_file* file, int operation, void* argument) {
    AccountSetFile& set = SetOf(file);
    switch (operation) {
        case kAskFileState:
            return Guarded([&] {
                *static_cast<int*>(argument) = static_cast<int>(set.State());
                return SQLITE_OK;
            });
        case SQLITE_FCNTL_HAS_MOVED:
            // Asked before the log is brought home at the end: not into a file of others.
            return Guarded([&] {
                *static_cast<int*>(argument) = set.LeavesLog();
                return SQLITE_OK;
            });
        case SQLITE_FCNTL_LOCKSTATE:
            *static_cast<int*>(argument) = set.LockLevel();
            return SQLITE_OK;
        case SQLITE_FCNTL_LAST_ERRNO:
            *static_cast<int*>(argument) = set.LastError();
            return SQLITE_OK;
        case SQLITE_FCNTL_VFSNAME:
            *static_cast<char**>(argument) = sqlite3_mprintf("%s", kName);
            return SQLITE_OK;
        default:
            return SQLITE_NOTFOUND;
    }
}

const sqlite3_io_methods kMethods = {
    2,
    Close,
    [](sqlite3_file* file, void* bytes, int count, sqlite3_int64 offset) {
        return SetOf(file).Read(bytes, count, offset);
    },
    [](sqlite3_file* file, const void* bytes, int count, sqlite3_int64 offset) {
        return SetOf(file).Write(bytes, count, offset);
    },
    [](sqlite3_file* file, sqlite3_int64 bytes) { return SetOf(file).Truncate(bytes); },
    [](sqlite3_file* file, int flags) { return Guarded([&] { return SetOf(file).Sync(flags); }); },
    [](sqlite3_file* file, sqlite3_int64* bytes) {
        std::int64_t size = 0;
        const int code = SetOf(file).Size(&size);
        *bytes = size;
        return code;
    },
    [](sqlite3_file* file, int level) { return SetOf(file).Lock(level); },
    [](sqlite3_file* file, int level) { return SetOf(file).Unlock(level); },
    [](sqlite3_file* file, int* reserved) { return SetOf(file).CheckReservedLock(reserved); },
    Control,
    [](sqlite3_file*) { return kSectorBytes; },
    // Writing some bytes does not harm their neighbours when the power fails.
    [](sqlite3_file* file) {
        return SQLITE_IOCAP_POWERSAFE_OVERWRITE | (SetOf(file).IsFrozen() ? SQLITE_IOCAP_IMMUTABLE : 0);
    },
    [](sqlite3_file* file, int region, int bytes, int extend, void volatile** memory) {
        return Guarded([&] { return SetOf(file).MapIndex(region, bytes, extend != 0, memory); });
    },
    [](sqlite3_file* file, int offset, int count, int flags) {
        return SetOf(file).Index().Lock(offset, count, flags);
    },
    [](sqlite3_file*) { std::atomic_thread_fence(std::memory_order_seq_cst); },
    [](sqlite3_file* file, int remove) {
        return Guarded([&] {
            SetOf(file).Index().Close(remove != 0);
            return SQLITE_OK;
        });
    },
    nullptr,
    nullptr,
};

// A log that was made while the set was read-only may be written again by whoever made it.
void AllowWriting(const char* log) {
    struct stat file {};
    if (faccessat(AT_FDCWD, log, R_OK | W_OK, AT_EACCESS) == 0 || errno != EACCES) return;
    if (lstat(log, &file) != 0) return;
    if (!S_ISREG(file.st_mode) || file.st_uid != geteuid()) return;
    if (chmod(log, (file.st_mode & 0777) | S_IRUSR | S_IWUSR) != 0) errno = 0;
}

int Open(sqlite3_vfs* self, const char* path, sqlite3_file* file, int flags, int* opened) {
    file->pMethods = nullptr;
    if ((flags & SQLITE_OPEN_MAIN_DB) == 0 || path == nullptr) {
        if ((flags & SQLITE_OPEN_WAL) != 0 && path != nullptr) AllowWriting(path);
        return BaseOf(self)->xOpen(BaseOf(self), path, file, flags, opened);
    }
    return Guarded([&] {
        std::unique_ptr<AccountSetFile> set;
        const int code = AccountSetFile::Open(path, flags, set);
        if (code != SQLITE_OK) return code;
        if (opened != nullptr) {
            *opened = set->ReadOnly()
                          ? (flags & ~(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) | SQLITE_OPEN_READONLY
                          : flags;
        }
        reinterpret_cast<OpenFile*>(file)->set = set.release();
        file->pMethods = &kMethods;
        return SQLITE_OK;
    });
}

sqlite3_vfs MakeFileSystem() {
    sqlite3_vfs made = FileSystemOver(*sqlite3_vfs_find("unix"), kName);
    made.szOsFile = std::max(made.szOsFile, static_cast<int>(sizeof(OpenFile)));
    made.xOpen = Open;
    made.xGetLastError = [](sqlite3_vfs*, int, char*) { return errno; };
    return made;
}

}  // namespace

const char* AccountSetFileSystem() {
    static const bool registered = [] {
        sqlite3_initialize();
        static sqlite3_vfs system = MakeFileSystem();
        return sqlite3_vfs_register(&system, 0) == SQLITE_OK;
    }();
    return registered ? kName : nullptr;
}

}  // namespace vicenter::tsql::engine
