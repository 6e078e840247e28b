#include "tsql/sqlite/posix_descriptor.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#ifndef F_OFD_SETLK
#error "locks of open file descriptions are needed: SQLite's record locks do not outlive a foreign close"
#endif

namespace vicenter::tsql::engine {

namespace {

// 0 to 2 are where programs print to, whatever stands behind them.
constexpr int kFirstDescriptor = 3;

struct Known {
    int descriptor;
    bool idle;
};

std::mutex& Guard() {
    static std::mutex guard;
    return guard;
}

// All descriptors that are ours; never destroyed, since connections may be closed at the end of the process.
std::vector<Known>& Ours() {
    static auto& known = *new std::vector<Known>;
    return known;
}

bool SameFile(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool IsOurs(int descriptor) {
    return std::ranges::any_of(Ours(), [&](const Known& known) { return known.descriptor == descriptor; });
}

// Whether the process has the file open by other means; true when nobody can tell.
bool OpenElsewhere(const struct stat& file) {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc/self/fd"), closedir);
    if (!folder) return true;
    while (const dirent* entry = readdir(folder.get())) {
        int descriptor = -1;
        const char* end = entry->d_name + std::strlen(entry->d_name);
        if (std::from_chars(entry->d_name, end, descriptor).ec != std::errc()) continue;
        struct stat other {};
        if (!IsOurs(descriptor) && fstat(descriptor, &other) == 0 && SameFile(file, other)) return true;
    }
    return false;
}

void CloseWhatHarmsNobody() {
    std::erase_if(Ours(), [](const Known& known) {
        struct stat file {};
        if (!known.idle || (fstat(known.descriptor, &file) == 0 && OpenElsewhere(file))) return false;
        close(known.descriptor);
        return true;
    });
}

int TakeIdle(const std::string& path, int flags) {
    struct stat file {};
    if (stat(path.c_str(), &file) != 0) return -1;
    for (Known& known : Ours()) {
        struct stat own {};
        if (!known.idle || fstat(known.descriptor, &own) != 0 || !SameFile(file, own)) continue;
        if ((fcntl(known.descriptor, F_GETFL) & O_ACCMODE) != (flags & O_ACCMODE)) continue;
        known.idle = false;
        return known.descriptor;
    }
    return -1;
}

struct flock Range(short type, std::int64_t begin, std::int64_t bytes) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = begin;
    range.l_len = bytes;
    return range;
}

}  // namespace

int OpenDescriptor(const std::string& path, int flags, mode_t mode) {
    const std::lock_guard guard(Guard());
    if (const int idle = TakeIdle(path, flags); idle >= 0) return idle;
    int descriptor = -1;
    do {
        descriptor = open(path.c_str(), flags | O_CLOEXEC, mode);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor >= 0 && descriptor < kFirstDescriptor) {
        const int higher = fcntl(descriptor, F_DUPFD_CLOEXEC, kFirstDescriptor);
        const int reason = errno;
        close(descriptor);
        errno = reason;
        descriptor = higher;
    }
    if (descriptor >= 0) Ours().push_back({descriptor, false});
    return descriptor;
}

void RetireDescriptor(int descriptor) {
    if (descriptor < 0) return;
    // A process that was forked in the meantime may hold the description: its locks go now, not with it.
    SetLock(descriptor, LockKind::kNone, 0, 0);
    const std::lock_guard guard(Guard());
    for (Known& known : Ours()) {
        if (known.descriptor == descriptor) known.idle = true;
    }
    CloseWhatHarmsNobody();
}

int SetLock(int descriptor, LockKind kind, std::int64_t begin, std::int64_t bytes) {
    static constexpr short kTypes[] = {F_UNLCK, F_RDLCK, F_WRLCK};
    struct flock range = Range(kTypes[static_cast<int>(kind)], begin, bytes);
    if (fcntl(descriptor, F_OFD_SETLK, &range) == 0) return SQLITE_OK;
    switch (errno) {
        case EACCES:
        case EAGAIN:
        case EBUSY:
        case EINTR:
        case ENOLCK:
            return SQLITE_BUSY;
        case EPERM:
            return SQLITE_PERM;
        default:
            return kind == LockKind::kNone ? SQLITE_IOERR_UNLOCK : SQLITE_IOERR_LOCK;
    }
}

LockKind OthersLock(int descriptor, std::int64_t begin, std::int64_t bytes) {
    struct flock range = Range(F_WRLCK, begin, bytes);
    if (fcntl(descriptor, F_OFD_GETLK, &range) != 0 || range.l_type == F_UNLCK) return LockKind::kNone;
    return range.l_type == F_WRLCK ? LockKind::kWrite : LockKind::kRead;
}

}  // namespace vicenter::tsql::engine
