#include "tsql/sqlite/posix_account_set_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include "automation/quietly.h"
#include "tsql/sqlite/posix_descriptor.h"

namespace vicenter::tsql::engine {

namespace {

// The bytes that SQLite locks in the main file, on every system.
constexpr std::int64_t kPendingByte = 0x40000000;
constexpr std::int64_t kReservedByte = kPendingByte + 1;
constexpr std::int64_t kSharedBegin = kPendingByte + 2;
constexpr std::int64_t kSharedBytes = 510;

constexpr mode_t kPermissions = 0644;
// How often a file that others seem to hold elsewhere is looked at again: they may just be leaving.
constexpr int kLooks = 3;
// How long others may take from the main file to its index on a machine that has much to do.
constexpr std::chrono::seconds kInBetween(3);
// Blocks of a file that are compared.
constexpr std::int64_t kSamples = 32;
constexpr std::int64_t kSampleBytes = 4096;
// Logs put aside beside one account set.
constexpr int kAside = 100;

bool SameTime(const struct timespec& one, const struct timespec& other) {
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

}  // namespace

int AccountSetFile::Open(const char* path, int flags, std::unique_ptr<AccountSetFile>& file) {
    const bool write = (flags & SQLITE_OPEN_READWRITE) != 0;
    const bool create = (flags & SQLITE_OPEN_CREATE) != 0;
    struct stat before {};
    const bool existed = stat(path, &before) == 0;
    bool readOnly = !write;
    int descriptor =
        OpenDescriptor(path, O_NOFOLLOW | (write ? O_RDWR : O_RDONLY) | (create ? O_CREAT : 0), kPermissions);
    bool frozen = false;
    if (descriptor < 0 && write && existed && (errno == EACCES || errno == EPERM || errno == EROFS)) {
        readOnly = true;
        frozen = errno == EROFS;
        descriptor = OpenDescriptor(path, O_NOFOLLOW | O_RDONLY, kPermissions);
    }
    if (descriptor < 0) return SQLITE_CANTOPEN;
    file = std::make_unique<AccountSetFile>(path, descriptor, readOnly, create && !existed);
    if (frozen) file->Freeze();
    return SQLITE_OK;
}

bool AccountSetFile::HasLogOrJournal() const {
    for (const char* tail : {"-wal", "-journal"}) {
        struct stat log {};
        if (stat((path_ + tail).c_str(), &log) == 0 && log.st_size > 0) return true;
    }
    return false;
}

// No log and no index can be made there, and without them SQLite would not read.
void AccountSetFile::Freeze() {
    struct stat file {};
    if (!HasLogOrJournal() && fstat(descriptor_, &file) == 0) frozen_ = file;
}

AccountSetFile::AccountSetFile(std::string path, int descriptor, bool readOnly, bool created)
    : path_(std::move(path)),
      descriptor_(descriptor),
      readOnly_(readOnly),
      syncFolder_(created),
      index_(path_, descriptor) {}

AccountSetFile::~AccountSetFile() {
    index_.Close(false);
    if (state_ == FileState::kOverwritten && !frozen_) automation::Quietly([this] { PutLogAside(); });
    RetireDescriptor(descriptor_);
}

int AccountSetFile::Failed(int code) {
    lastError_ = errno;
    return code;
}

int AccountSetFile::Read(void* bytes, int count, std::int64_t offset) {
    auto* to = static_cast<char*>(bytes);
    while (count > 0) {
        const ssize_t got = pread(descriptor_, to, static_cast<std::size_t>(count), offset);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return Failed(SQLITE_IOERR_READ);
        if (got == 0) {
            std::memset(to, 0, static_cast<std::size_t>(count));
            return SQLITE_IOERR_SHORT_READ;
        }
        to += got;
        count -= static_cast<int>(got);
        offset += got;
    }
    return SQLITE_OK;
}

int AccountSetFile::Write(const void* bytes, int count, std::int64_t offset) {
    const auto* from = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t put = pwrite(descriptor_, from, static_cast<std::size_t>(count), offset);
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) return Failed(errno == ENOSPC || errno == EDQUOT ? SQLITE_FULL : SQLITE_IOERR_WRITE);
        if (put == 0) return SQLITE_FULL;
        from += put;
        count -= static_cast<int>(put);
        offset += put;
    }
    return SQLITE_OK;
}

int AccountSetFile::Truncate(std::int64_t bytes) {
    int result = 0;
    do {
        result = ftruncate(descriptor_, bytes);
    } while (result != 0 && errno == EINTR);
    return result == 0 ? SQLITE_OK : Failed(SQLITE_IOERR_TRUNCATE);
}

int AccountSetFile::Sync(int) {
    if (fdatasync(descriptor_) != 0) return Failed(SQLITE_IOERR_FSYNC);
    if (!syncFolder_) return SQLITE_OK;
    const std::string folder = path_.substr(0, std::max<std::size_t>(path_.rfind('/'), 1));
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // There are folders that may be written and not read; their names cannot be waited for.
    if (descriptor < 0) return SQLITE_OK;
    const int result = fsync(descriptor);
    close(descriptor);
    if (result != 0) return Failed(SQLITE_IOERR_DIR_FSYNC);
    syncFolder_ = false;
    return SQLITE_OK;
}

int AccountSetFile::Size(std::int64_t* bytes) {
    struct stat file {};
    if (fstat(descriptor_, &file) != 0) return Failed(SQLITE_IOERR_FSTAT);
    // As SQLite's own: some systems leave one byte in a file that locks were taken in.
    *bytes = file.st_size == 1 ? 0 : file.st_size;
    return SQLITE_OK;
}

int AccountSetFile::Lock(int level) {
    if (level_ >= level) return SQLITE_OK;
    int code = SQLITE_OK;
    if (level == SQLITE_LOCK_SHARED) {
        // A writer that waits keeps new readers out by the pending byte.
        code = SetLock(descriptor_, LockKind::kRead, kPendingByte, 1);
        if (code != SQLITE_OK) return Failed(code);
        code = SetLock(descriptor_, LockKind::kRead, kSharedBegin, kSharedBytes);
        SetLock(descriptor_, LockKind::kNone, kPendingByte, 1);
    } else if (level == SQLITE_LOCK_RESERVED) {
        code = SetLock(descriptor_, LockKind::kWrite, kReservedByte, 1);
    } else {
        // Not for a journal that a dead process has left: then nobody may come in between.
        if (level_ == SQLITE_LOCK_RESERVED) {
            code = SetLock(descriptor_, LockKind::kWrite, kPendingByte, 1);
            if (code != SQLITE_OK) return Failed(code);
            level_ = SQLITE_LOCK_PENDING;
        }
        code = SetLock(descriptor_, LockKind::kWrite, kSharedBegin, kSharedBytes);
    }
    if (code != SQLITE_OK) return Failed(code);
    level_ = level;
    return SQLITE_OK;
}

int AccountSetFile::Unlock(int level) {
    if (level_ <= level) return SQLITE_OK;
    int code = SQLITE_OK;
    if (level == SQLITE_LOCK_SHARED) {
        code = SetLock(descriptor_, LockKind::kRead, kSharedBegin, kSharedBytes);
        if (code != SQLITE_OK) return Failed(SQLITE_IOERR_RDLOCK);
        code = SetLock(descriptor_, LockKind::kNone, kPendingByte, 2);
    } else {
        code = SetLock(descriptor_, LockKind::kNone, 0, 0);
    }
    if (code != SQLITE_OK) return Failed(code);
    level_ = level;
    return SQLITE_OK;
}

int AccountSetFile::CheckReservedLock(int* reserved) {
    *reserved = level_ > SQLITE_LOCK_SHARED || OthersLock(descriptor_, kReservedByte, 1) != LockKind::kNone;
    return SQLITE_OK;
}

// Whoever uses the index holds the main file for reading. When nobody does, they hold another file, which
// stood here before: its log must not be mixed into this one.
bool AccountSetFile::OthersWorkElsewhere() const {
    for (int look = 0; look < kLooks; ++look) {
        if (!index_.IsShared()) return false;
        if (OthersLock(descriptor_, kSharedBegin, kSharedBytes) != LockKind::kNone) return false;
    }
    return true;
}

// Whoever holds the main file uses the index as well, but for the moment in between. When nobody else uses
// this one, they have another, and with it another log: the file has two names, or the index was deleted
// beside them.
int AccountSetFile::FindPlace() {
    if (OthersWorkElsewhere()) {
        state_ = FileState::kHeldAbroad;
        return SQLITE_CANTOPEN;
    }
    if (OthersLock(descriptor_, kSharedBegin, kSharedBytes) != LockKind::kNone && !index_.IsShared()) {
        const auto now = std::chrono::steady_clock::now();
        if (now - alone_.value_or(now) < kInBetween) {
            if (!alone_) alone_ = now;
            return SQLITE_BUSY;
        }
        state_ = FileState::kLogAbroad;
        return SQLITE_CANTOPEN;
    }
    log_ = LogThere();
    placed_ = true;
    return SQLITE_OK;
}

// An index that others use tells how long their log is; a shorter one in its place is not theirs.
bool AccountSetFile::IsLogComplete() const {
    for (int look = 0; look < kLooks; ++look) {
        const std::int64_t wanted = index_.LogBytes();
        const std::optional<Log> there = LogThere();
        if (wanted == 0 || (there && there->bytes >= wanted)) return true;
    }
    return false;
}

int AccountSetFile::MapIndex(int region, int bytes, bool extend, void volatile** memory) {
    *memory = nullptr;
    if (!index_.IsOpen()) {
        placed_ = false;
        alone_.reset();
        const int code = index_.Open();
        if (code != SQLITE_OK) return Failed(code);
    }
    const bool first = !placed_;
    if (first) {
        const int code = FindPlace();
        if (code == SQLITE_CANTOPEN) index_.Close(false);
        if (code != SQLITE_OK) return code;
    }
    const int code = index_.Map(region, bytes, extend, memory);
    if (code == SQLITE_OK && first && region == 0 && !IsLogComplete()) {
        *memory = nullptr;
        index_.Close(false);
        state_ = FileState::kLogAbroad;
        return SQLITE_CANTOPEN;
    }
    return (code & 0xFF) == SQLITE_IOERR ? Failed(code) : code;
}

std::optional<AccountSetFile::Log> AccountSetFile::LogThere() const {
    struct stat log {};
    if (stat((path_ + "-wal").c_str(), &log) != 0) return std::nullopt;
    return Log{log.st_dev, log.st_ino, log.st_size};
}

bool AccountSetFile::IsLogLost() const {
    if (!index_.IsOpen() || !placed_) return false;
    if (!index_.IsInPlace()) return true;
    if (!log_) return false;
    const std::optional<Log> there = LogThere();
    return !there || there->device != log_->device || there->number != log_->number;
}

// A log that was deleted goes home when the last connection closes, unless somebody has begun another since.
bool AccountSetFile::LeavesLog() {
    if (State() != FileState::kLogLost) return state_ != FileState::kSame;
    const std::optional<Log> there = LogThere();
    return there && there->bytes > 0;
}

AccountSetFile::Content AccountSetFile::Sampled() const {
    Content content;
    struct stat file {};
    if (fstat(descriptor_, &file) != 0) return content;
    content.bytes = file.st_size;
    const std::int64_t blocks = (content.bytes + kSampleBytes - 1) / kSampleBytes;
    const std::int64_t samples = std::min(blocks, kSamples);
    std::array<std::uint64_t, kSampleBytes / sizeof(std::uint64_t)> words{};
    std::uint64_t sample = 14695981039346656037ULL;
    for (std::int64_t i = 0; i < samples; ++i) {
        const std::int64_t block = samples == 1 ? 0 : i * (blocks - 1) / (samples - 1);
        words.fill(0);
        if (pread(descriptor_, words.data(), kSampleBytes, block * kSampleBytes) < 0) continue;
        for (const std::uint64_t word : words) {
            sample = (sample ^ word) * 1099511628211ULL;
            sample ^= sample >> 29;
        }
    }
    content.sample = sample;
    return content;
}

// The file may be written by checkpoints alone. One that has changed while no checkpoint went on was written
// by something else: a copy over it, a restored backup.
bool AccountSetFile::OverwrittenSince(const struct stat& now) {
    const std::optional<WalIndex::Progress> progress = index_.BroughtHome();
    if (!progress) {
        seen_.reset();
        return false;
    }
    const bool known = seen_ && seen_->progress == *progress;
    if (known && SameTime(seen_->written, now.st_mtim)) return false;
    const Content content = Sampled();
    // What was read while a checkpoint began says nothing.
    if (index_.BroughtHome() != progress) {
        seen_.reset();
        return false;
    }
    if (known && content != seen_->content) return true;
    seen_ = Seen{*progress, now.st_mtim, content};
    return false;
}

FileState AccountSetFile::State() {
    // What has been lost once does not come back.
    if (state_ != FileState::kSame) return state_;
    struct stat own {};
    struct stat there {};
    if (fstat(descriptor_, &own) != 0) return state_;
    if (stat(path_.c_str(), &there) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) state_ = FileState::kGone;
    } else if (own.st_dev != there.st_dev || own.st_ino != there.st_ino) {
        state_ = FileState::kReplaced;
    } else if (frozen_ && (!SameTime(frozen_->st_mtim, there.st_mtim) || frozen_->st_size != there.st_size ||
                           HasLogOrJournal())) {
        // By way of another place where the medium can be written.
        state_ = FileState::kOverwritten;
    } else if (OverwrittenSince(there)) {
        state_ = FileState::kOverwritten;
    } else if (IsLogLost()) {
        state_ = FileState::kLogLost;
    }
    return state_;
}

// The log belongs to a content that is no more; applied to the new one it would damage it.
void AccountSetFile::PutLogAside() {
    const bool alone = SetLock(descriptor_, LockKind::kWrite, kPendingByte, 1) == SQLITE_OK &&
                       SetLock(descriptor_, LockKind::kWrite, kSharedBegin, kSharedBytes) == SQLITE_OK;
    struct stat log {};
    const std::string from = path_ + "-wal";
    if (!alone || stat(from.c_str(), &log) != 0 || log.st_size == 0) return;
    for (int i = 1; i <= kAside; ++i) {
        const std::string to = from + ".replaced" + std::to_string(i);
        if (access(to.c_str(), F_OK) == 0) continue;
        if (rename(from.c_str(), to.c_str()) == 0) unlink((path_ + "-shm").c_str());
        return;
    }
}

}  // namespace vicenter::tsql::engine
