#include "tsql/sqlite/posix_wal_index.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tsql/sqlite/posix_descriptor.h"

namespace vicenter::tsql::engine {

namespace {

// Bytes of the file that stand for SQLite's locks, in the order of their numbers.
constexpr std::int64_t kFirstLock = 120;
constexpr int kWriteLock = 0;
constexpr int kCheckpointLock = 1;
constexpr int kFirstReader = 4;  // readers that use the log; the one before them reads the main file alone
constexpr int kReaders = 4;
// Held for reading by everybody who has the file open.
constexpr std::int64_t kPresence = kFirstLock + SQLITE_SHM_NLOCK;
// What the first one cuts the file to: less than a header, so that it is filled anew.
constexpr off_t kEmptyBytes = 3;
constexpr std::int64_t kDiskPage = 4096;

// Places in the header, in words of 32 bits.
constexpr int kPageHalf = 7;  // of 16 bits
constexpr int kFramesWord = 4;
constexpr int kSaltWord = 8;
constexpr int kFramesHomeWord = 24;
constexpr int kFramesTriedWord = 32;

// Of the log itself, in bytes.
constexpr std::int64_t kLogHead = 32;
constexpr std::int64_t kFrameHead = 24;

constexpr mode_t kPermissions = 0777;
constexpr mode_t kOwnerMayWrite = 0600;

constexpr unsigned Bits(int offset, int count) {
    return ((1U << count) - 1U) << offset;
}

constexpr bool Covers(int offset, int count, int lock) {
    return offset <= lock && lock < offset + count;
}

}  // namespace

WalIndex::~WalIndex() {
    Close(false);
}

int WalIndex::Open() {
    struct stat set {};
    if (fstat(set_, &set) != 0) return SQLITE_IOERR_FSTAT;
    const std::string path = path_ + "-shm";
    // Whoever made it may always write it: one that a moment of being read-only has left behind would make
    // the set read-only for ever.
    const mode_t mode = (set.st_mode & kPermissions) | kOwnerMayWrite;
    readOnly_ = false;
    descriptor_ = OpenDescriptor(path, O_RDWR | O_CREAT | O_NOFOLLOW, mode);
    if (descriptor_ < 0 && errno == EACCES) {
        struct stat index {};
        if (lstat(path.c_str(), &index) == 0 && S_ISREG(index.st_mode) && index.st_uid == geteuid() &&
            chmod(path.c_str(), (index.st_mode & kPermissions) | kOwnerMayWrite) == 0)
            descriptor_ = OpenDescriptor(path, O_RDWR | O_NOFOLLOW, mode);
    }
    if (descriptor_ < 0) {
        descriptor_ = OpenDescriptor(path, O_RDONLY | O_NOFOLLOW, mode);
        if (descriptor_ < 0) return SQLITE_CANTOPEN;
        readOnly_ = true;
    }
    struct stat index {};
    if (!readOnly_ && fstat(descriptor_, &index) == 0 && index.st_size == 0) {
        // Whatever the process masks, and for whomever the administrator opens the set.
        if ((index.st_mode & kPermissions) != mode && fchmod(descriptor_, mode) != 0) errno = 0;
        if (geteuid() == 0 && fchown(descriptor_, set.st_uid, set.st_gid) != 0) errno = 0;
    }
    const int code = Attach();
    if (code != SQLITE_OK && code != SQLITE_READONLY_CANTINIT) Close(false);
    return code;
}

int WalIndex::Attach() {
    switch (OthersLock(descriptor_, kPresence, 1)) {
        case LockKind::kWrite:
            return SQLITE_BUSY;
        case LockKind::kRead:
            break;
        case LockKind::kNone: {
            if (readOnly_) return SQLITE_READONLY_CANTINIT;
            // The first one to come: what a dead process may have left is not to be trusted.
            const int code = SetLock(descriptor_, LockKind::kWrite, kPresence, 1);
            if (code != SQLITE_OK) return code;
            if (ftruncate(descriptor_, kEmptyBytes) != 0) return SQLITE_IOERR_SHMOPEN;
            break;
        }
    }
    const int code = SetLock(descriptor_, LockKind::kRead, kPresence, 1);
    attached_ = code == SQLITE_OK;
    return code;
}

bool WalIndex::IsShared() const {
    return OthersLock(descriptor_, kPresence, 1) != LockKind::kNone;
}

bool WalIndex::IsInPlace() const {
    struct stat own {};
    struct stat there {};
    if (descriptor_ < 0 || fstat(descriptor_, &own) != 0) return true;
    if (stat((path_ + "-shm").c_str(), &there) != 0) return errno != ENOENT && errno != ENOTDIR;
    return own.st_dev == there.st_dev && own.st_ino == there.st_ino;
}

std::int64_t WalIndex::LogBytes() const {
    if (maps_.empty()) return 0;
    const auto* words = static_cast<const volatile std::uint32_t*>(maps_.front());
    const auto* halves = static_cast<const volatile std::uint16_t*>(maps_.front());
    const std::uint32_t frames = words[kFramesWord];
    // A page of 65,536 bytes is told as one of 1.
    const std::int64_t page = (halves[kPageHalf] & 0xFE00) + (halves[kPageHalf] & 1) * 0x10000;
    return frames == 0 ? 0 : kLogHead + frames * (kFrameHead + page);
}

// A byte in every page, so that a full disk is told here and not by a signal when the memory is used.
int WalIndex::Grow(std::int64_t bytes) {
    struct stat index {};
    if (fstat(descriptor_, &index) != 0) return SQLITE_IOERR_SHMSIZE;
    for (std::int64_t page = index.st_size / kDiskPage; page < bytes / kDiskPage; ++page) {
        if (pwrite(descriptor_, "", 1, page * kDiskPage + kDiskPage - 1) == 1) continue;
        const bool full = errno == ENOSPC || errno == EDQUOT || errno == EFBIG;
        return full ? SQLITE_FULL : SQLITE_IOERR_SHMSIZE;
    }
    return SQLITE_OK;
}

int WalIndex::Map(int region, int bytes, bool extend, void volatile** memory) {
    *memory = nullptr;
    if (!attached_) {
        const int code = Attach();
        if (code != SQLITE_OK) return code;
    }
    if (regionBytes_ == 0) {
        regionBytes_ = bytes;
        mapBytes_ = static_cast<std::size_t>(std::max<std::int64_t>(bytes, sysconf(_SC_PAGESIZE)));
    }
    const std::size_t begin = static_cast<std::size_t>(region) * static_cast<std::size_t>(bytes);
    const std::size_t wanted = begin / mapBytes_;
    while (maps_.size() <= wanted) {
        const auto end = static_cast<std::int64_t>((maps_.size() + 1) * mapBytes_);
        struct stat index {};
        if (fstat(descriptor_, &index) != 0) return SQLITE_IOERR_SHMSIZE;
        if (index.st_size < end) {
            if (!extend) return readOnly_ ? SQLITE_READONLY : SQLITE_OK;
            if (const int code = Grow(end); code != SQLITE_OK) return code;
        }
        void* map = mmap(nullptr, mapBytes_, readOnly_ ? PROT_READ : PROT_READ | PROT_WRITE, MAP_SHARED,
                         descriptor_, end - static_cast<std::int64_t>(mapBytes_));
        if (map == MAP_FAILED) return SQLITE_IOERR_SHMMAP;
        maps_.push_back(map);
    }
    *memory = static_cast<char*>(maps_[wanted]) + begin % mapBytes_;
    return readOnly_ ? SQLITE_READONLY : SQLITE_OK;
}

int WalIndex::Lock(int offset, int count, int flags) {
    const unsigned bits = Bits(offset, count);
    if ((flags & SQLITE_SHM_UNLOCK) != 0) {
        if (((shared_ | exclusive_) & bits) == 0) return SQLITE_OK;
        shared_ &= ~bits;
        exclusive_ &= ~bits;
        return Release(offset, count);
    }
    const bool exclusive = (flags & SQLITE_SHM_EXCLUSIVE) != 0;
    unsigned& held = exclusive ? exclusive_ : shared_;
    if ((held & bits) == bits) return SQLITE_OK;
    const int code = Acquire(offset, count, exclusive);
    if (code == SQLITE_OK) held |= bits;
    return code;
}

// Up to 3.51.2 SQLite lets a writer start the log over while a checkpoint has read the old log's length but
// not yet how much of it is home; the checkpoint then marks frames as brought home that are not, and they are
// lost. Here a checkpoint also keeps writers out, and a log is started over only while no checkpoint runs.
int WalIndex::Acquire(int offset, int count, bool exclusive) {
    const auto lock = [&](int number) {
        return SetLock(descriptor_, LockKind::kWrite, kFirstLock + number, 1);
    };
    const bool checkpoint = exclusive && Covers(offset, count, kCheckpointLock);
    if (checkpoint && (exclusive_ & Bits(kWriteLock, 1)) == 0) {
        if (const int code = lock(kWriteLock); code != SQLITE_OK) return code;
        writeForCheckpoint_ = true;
    }
    const bool restart = exclusive && offset == kFirstReader && count == kReaders;
    if (restart && (exclusive_ & Bits(kCheckpointLock, 1)) == 0) {
        if (const int code = lock(kCheckpointLock); code != SQLITE_OK) return code;
        checkpointForRestart_ = true;
    }
    const int code =
        SetLock(descriptor_, exclusive ? LockKind::kWrite : LockKind::kRead, kFirstLock + offset, count);
    if (code == SQLITE_OK && exclusive && Covers(offset, count, kWriteLock)) writeForCheckpoint_ = false;
    if (code != SQLITE_OK && (checkpoint || restart)) Release(offset, 0);
    return code;
}

int WalIndex::Release(int offset, int count) {
    const auto unlock = [&](int first, int number) {
        return number == 0 ? SQLITE_OK : SetLock(descriptor_, LockKind::kNone, kFirstLock + first, number);
    };
    int code = SQLITE_OK;
    if (count > 0 && offset == kWriteLock && (exclusive_ & Bits(kCheckpointLock, 1)) != 0) {
        // SQLite's own hold on it ends; the checkpoint's does not.
        writeForCheckpoint_ = true;
        code = unlock(offset + 1, count - 1);
    } else {
        code = unlock(offset, count);
    }
    if (writeForCheckpoint_ && (exclusive_ & Bits(kCheckpointLock, 1)) == 0) {
        writeForCheckpoint_ = false;
        unlock(kWriteLock, 1);
    }
    if (checkpointForRestart_ && offset == kFirstReader) {
        checkpointForRestart_ = false;
        unlock(kCheckpointLock, 1);
    }
    return code;
}

void WalIndex::Close(bool remove) {
    for (void* map : maps_)
        munmap(map, mapBytes_);
    maps_.clear();
    regionBytes_ = 0;
    shared_ = exclusive_ = 0;
    writeForCheckpoint_ = checkpointForRestart_ = false;
    attached_ = false;
    if (descriptor_ < 0) return;
    if (remove) unlink((path_ + "-shm").c_str());
    RetireDescriptor(std::exchange(descriptor_, -1));
}

std::optional<WalIndex::Progress> WalIndex::BroughtHome() const {
    if (maps_.empty()) return std::nullopt;
    const auto* words = static_cast<const volatile std::uint32_t*>(maps_.front());
    const Progress progress{{words[kSaltWord], words[kSaltWord + 1]}, words[kFramesHomeWord]};
    if (words[kFramesTriedWord] != progress.frames) return std::nullopt;
    return progress;
}

}  // namespace vicenter::tsql::engine
