/* clang-format off */
/*
 * Preloaded into a program under test (LD_PRELOAD): counts its calls to the system on the files of one folder
 * and makes the n-th of them fail, write only a half, or be the program's last.
 *
 *   VICENTER_FAULT_FOLDER   calls on files below this folder are counted, others never
 *   VICENTER_FAULT          CLASSES,N,ACTION,ERRNO: the N-th call of these classes (names joined by "+") fares so:
 *     fail    it fails with ERRNO
 *     stuck   it and all later ones of its classes fail with ERRNO, as on a full disk
 *     short   half of what was to be written is written, later writes fail with ERRNO
 *     kill    the program is killed instead
 *     torn    half of what was to be written is written, then the program is killed
 *     cut     the power fails instead: what no file was synchronized for is taken back, and what was renamed in a
 *             folder that has not been synchronized since
 *     N = 0 never strikes; with "cut" the power then fails when the program ends
 *   VICENTER_FAULT_REPORT   gets a line "fired OPERATION PATH" and, at an ordinary end, "CLASS COUNT" for each
 *                           class
 *
 * Classes: open read write sync truncate rename unlink lock map alloc. Allocations count from the first call
 * on a watched file on, so that loading the program is left alone.
 *
 * The fopen family is watched at its own functions, because the C library's inner calls cannot be.
 */
/* clang-format on */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

#include "tests/faults/power_cut.h"

enum { kOpen, kRead, kWrite, kSync, kTruncate, kRename, kUnlink, kLock, kMap, kAlloc, kClasses };
static const char* const kClassNames[kClasses] = {"open",   "read",   "write", "sync", "truncate",
                                                  "rename", "unlink", "lock",  "map",  "alloc"};

enum action { kFail, kStuck, kShort, kKill, kTorn, kCut };
static const char* const kActionNames[] = {"fail", "stuck", "short", "kill", "torn", "cut"};

/* What a call is to do. */
enum verdict { kGoOn, kRefuse, kHalf };

#define MAX_FD 1024

static char folder[PATH_MAX];
static size_t folderLength;
static char reportPath[PATH_MAX];
static unsigned mask;
static long strikeAt;
static enum action action;
static int strikeErrno = EIO;
static atomic_long matched;
static atomic_long counts[kClasses];
static atomic_int armed; /* a watched file has been touched */
static atomic_int struck;
static char watched[MAX_FD];
static char names[MAX_FD][MAX_NAME];

extern void* __libc_malloc(size_t);
extern void* __libc_calloc(size_t, size_t);
extern void* __libc_realloc(void*, size_t);
extern void* __libc_memalign(size_t, size_t);
extern void __libc_free(void*);

static int KeepsChanges(void) {
    return action == kCut && mask != 0;
}

/* ---- the report */

static void Report(const char* text) {
    if (reportPath[0] == 0) return;
    const int fd =
        (int)syscall(SYS_openat, AT_FDCWD, reportPath, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (fd < 0) return;
    if (syscall(SYS_write, fd, text, strlen(text)) < 0) { /* the driver misses it */
    }
    syscall(SYS_close, fd);
}

static void ReportStrike(const char* operation, const char* path) {
    char line[PATH_MAX + 64];
    snprintf(line, sizeof line, "fired %s %s\n", operation, path);
    Report(line);
}

static void Die(void) {
    syscall(SYS_kill, syscall(SYS_getpid), SIGKILL);
    for (;;)
        syscall(SYS_pause);
}

/* ---- the decision */

static enum verdict Decide(int class, const char* operation, const char* path) {
    atomic_store(&armed, 1);
    atomic_fetch_add(&counts[class], 1);
    if ((mask & (1u << class)) == 0) return kGoOn;
    const long count = atomic_fetch_add(&matched, 1) + 1;
    if (strikeAt == 0 || count < strikeAt) return kGoOn;
    if (count > strikeAt) {
        const int stays = action == kStuck || (action == kShort && class == kWrite);
        if (!stays) return kGoOn;
        errno = strikeErrno;
        return kRefuse;
    }
    if (!atomic_exchange(&struck, 1)) ReportStrike(operation, path);
    switch (action) {
        case kKill:
            Die();
            break;
        case kCut:
            TakeBackChanges();
            TakeBackMoves();
            Die();
            break;
        case kShort:
        case kTorn:
            if (class == kWrite) return kHalf;
            if (action == kTorn) Die();
            break;
        default:
            break;
    }
    errno = strikeErrno;
    return kRefuse;
}

/* After the half of a write. */
static void AfterHalf(void) {
    if (action == kTorn) Die();
}

static int BelowFolder(const char* path, char* absolute) {
    if (folderLength == 0 || path == NULL) return 0;
    if (path[0] == '/') {
        if (strlen(path) >= MAX_NAME) return 0;
        strcpy(absolute, path);
    } else {
        if (syscall(SYS_getcwd, absolute, MAX_NAME) < 0) return 0;
        const size_t length = strlen(absolute);
        if (length + 1 + strlen(path) >= MAX_NAME) return 0;
        absolute[length] = '/';
        strcpy(absolute + length + 1, path);
    }
    return strncmp(absolute, folder, folderLength) == 0 &&
           (absolute[folderLength] == '/' || absolute[folderLength] == 0) &&
           strcmp(absolute, reportPath) != 0;
}

static void Watch(int fd, const char* absolute) {
    if (fd < 0 || fd >= MAX_FD) return;
    watched[fd] = 1;
    strcpy(names[fd], absolute);
}

static int IsWatched(int fd) {
    return fd >= 0 && fd < MAX_FD && watched[fd];
}

static void Unwatch(int fd) {
    if (fd >= 0 && fd < MAX_FD) watched[fd] = 0;
}

/* ---- the real functions */

#define REAL(result, name, ...) static result (*real_##name)(__VA_ARGS__)
REAL(int, open, const char*, int, ...);
REAL(int, openat, int, const char*, int, ...);
REAL(FILE*, fopen, const char*, const char*);
REAL(int, fclose, FILE*);
REAL(int, fflush, FILE*);
REAL(size_t, fwrite, const void*, size_t, size_t, FILE*);
REAL(int, mkstemp, char*);
REAL(int, close, int);
REAL(ssize_t, read, int, void*, size_t);
REAL(ssize_t, pread, int, void*, size_t, off_t);
REAL(ssize_t, write, int, const void*, size_t);
REAL(ssize_t, pwrite, int, const void*, size_t, off_t);
REAL(ssize_t, writev, int, const struct iovec*, int);
REAL(ssize_t, sendfile, int, int, off_t*, size_t);
REAL(ssize_t, copy_file_range, int, off_t*, int, off_t*, size_t, unsigned);
REAL(int, fsync, int);
REAL(int, fdatasync, int);
REAL(int, ftruncate, int, off_t);
REAL(int, posix_fallocate, int, off_t, off_t);
REAL(int, rename, const char*, const char*);
REAL(int, renameat, int, const char*, int, const char*);
REAL(int, renameat2, int, const char*, int, const char*, unsigned);
REAL(int, link, const char*, const char*);
REAL(int, linkat, int, const char*, int, const char*, int);
REAL(int, unlink, const char*);
REAL(int, unlinkat, int, const char*, int);
REAL(int, fcntl, int, int, ...);
REAL(int, flock, int, int);
REAL(void*, mmap, void*, size_t, int, int, int, off_t);

static void Resolve(void) {
#define FIND(name) *(void**)(&real_##name) = dlsym(RTLD_NEXT, #name)
    FIND(open);
    FIND(openat);
    FIND(fopen);
    FIND(fclose);
    FIND(fflush);
    FIND(fwrite);
    FIND(mkstemp);
    FIND(close);
    FIND(read);
    FIND(pread);
    FIND(write);
    FIND(pwrite);
    FIND(writev);
    FIND(sendfile);
    FIND(copy_file_range);
    FIND(fsync);
    FIND(fdatasync);
    FIND(ftruncate);
    FIND(posix_fallocate);
    FIND(rename);
    FIND(renameat);
    FIND(renameat2);
    FIND(link);
    FIND(linkat);
    FIND(unlink);
    FIND(unlinkat);
    FIND(fcntl);
    FIND(flock);
    FIND(mmap);
}

/* Other libraries' constructors may run before this one's. */
#define READY(name) \
    if (real_##name == NULL) Resolve()

static void ReadPlan(const char* text) {
    char plan[256];
    strncpy(plan, text, sizeof plan - 1);
    plan[sizeof plan - 1] = 0;
    char* rest = plan;
    char* classes = strsep(&rest, ",");
    char* n = strsep(&rest, ",");
    char* name = strsep(&rest, ",");
    char* number = strsep(&rest, ",");
    if (n == NULL || name == NULL) abort();
    for (char* class; (class = strsep(&classes, "+")) != NULL;) {
        int found = 0;
        for (int i = 0; i < kClasses; ++i) {
            if (strcmp(class, kClassNames[i]) != 0) continue;
            mask |= 1u << i;
            found = 1;
        }
        if (!found) abort();
    }
    strikeAt = atol(n);
    int known = 0;
    for (size_t i = 0; i < sizeof kActionNames / sizeof *kActionNames; ++i) {
        if (strcmp(name, kActionNames[i]) != 0) continue;
        action = (enum action)i;
        known = 1;
    }
    if (!known) abort();
    if (number != NULL) strikeErrno = atoi(number);
}

__attribute__((constructor)) static void Start(void) {
    Resolve();
    const char* value = getenv("VICENTER_FAULT_REPORT");
    if (value != NULL) strncpy(reportPath, value, sizeof reportPath - 1);
    value = getenv("VICENTER_FAULT");
    if (value != NULL) ReadPlan(value);
    value = getenv("VICENTER_FAULT_FOLDER");
    if (value != NULL) {
        strncpy(folder, value, sizeof folder - 1);
        folderLength = strlen(folder);
    }
}

__attribute__((destructor)) static void End(void) {
    char text[512];
    int length = 0;
    for (int i = 0; i < kClasses; ++i)
        length +=
            snprintf(text + length, sizeof text - (size_t)length, "%s %ld\n", kClassNames[i], counts[i]);
    Report(text);
    if (action == kCut && strikeAt == 0) {
        TakeBackChanges();
        TakeBackMoves();
    } else {
        ForgetMoves("");
    }
}

/* ---- opening */

static mode_t ModeOf(int flags, va_list arguments) {
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? (mode_t)va_arg(arguments, int) : 0;
}

static int Opened(int fd, const char* absolute, int fresh) {
    if (fd < 0) return fd;
    Watch(fd, absolute);
    if (fresh && KeepsChanges()) RememberChange(absolute, 0, 0);
    return fd;
}

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    READY(open);
    char absolute[MAX_NAME];
    if (!BelowFolder(path, absolute)) return real_open(path, flags, mode);
    if (Decide(kOpen, "open", absolute) != kGoOn) return -1;
    return Opened(real_open(path, flags, mode), absolute, (flags & O_TRUNC) != 0);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return open(path, flags | O_LARGEFILE, mode);
}

int openat(int directory, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    READY(openat);
    char absolute[MAX_NAME];
    if ((directory != AT_FDCWD && path[0] != '/') || !BelowFolder(path, absolute)) {
        return real_openat(directory, path, flags, mode);
    }
    if (Decide(kOpen, "openat", absolute) != kGoOn) return -1;
    return Opened(real_openat(directory, path, flags, mode), absolute, (flags & O_TRUNC) != 0);
}

int openat64(int directory, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return openat(directory, path, flags | O_LARGEFILE, mode);
}

int mkstemp(char* pattern) {
    READY(mkstemp);
    char absolute[MAX_NAME];
    if (!BelowFolder(pattern, absolute)) return real_mkstemp(pattern);
    if (Decide(kOpen, "mkstemp", absolute) != kGoOn) return -1;
    const int fd = real_mkstemp(pattern);
    if (BelowFolder(pattern, absolute)) Opened(fd, absolute, 1);
    return fd;
}

FILE* fopen(const char* path, const char* mode) {
    READY(fopen);
    char absolute[MAX_NAME];
    if (!BelowFolder(path, absolute)) return real_fopen(path, mode);
    if (Decide(kOpen, "fopen", absolute) != kGoOn) return NULL;
    FILE* file = real_fopen(path, mode);
    if (file != NULL) Opened(fileno(file), absolute, mode[0] == 'w');
    return file;
}

FILE* fopen64(const char* path, const char* mode) {
    return fopen(path, mode);
}

int fclose(FILE* file) {
    READY(fclose);
    const int fd = fileno(file);
    if (!IsWatched(fd)) return real_fclose(file);
    Unwatch(fd);
    /* What is still in its buffer is written here. */
    const enum verdict verdict = Decide(kWrite, "fclose", names[fd]);
    const int code = errno;
    const int closed = real_fclose(file);
    if (verdict == kGoOn) return closed;
    AfterHalf();
    errno = code;
    return EOF;
}

int close(int fd) {
    READY(close);
    Unwatch(fd);
    return real_close(fd);
}

/* ---- reading */

ssize_t read(int fd, void* buffer, size_t size) {
    READY(read);
    if (IsWatched(fd) && Decide(kRead, "read", names[fd]) != kGoOn) return -1;
    return real_read(fd, buffer, size);
}

ssize_t pread(int fd, void* buffer, size_t size, off_t at) {
    READY(pread);
    if (IsWatched(fd) && Decide(kRead, "pread", names[fd]) != kGoOn) return -1;
    return real_pread(fd, buffer, size, at);
}

ssize_t pread64(int fd, void* buffer, size_t size, off_t at) {
    return pread(fd, buffer, size, at);
}

/* ---- writing */

ssize_t pwrite(int fd, const void* buffer, size_t size, off_t at) {
    READY(pwrite);
    if (!IsWatched(fd)) return real_pwrite(fd, buffer, size, at);
    const enum verdict verdict = Decide(kWrite, "pwrite", names[fd]);
    if (verdict == kRefuse) return -1;
    if (KeepsChanges()) RememberChange(names[fd], at, size);
    if (verdict == kGoOn) return real_pwrite(fd, buffer, size, at);
    const ssize_t half = real_pwrite(fd, buffer, size / 2, at);
    AfterHalf();
    return half;
}

ssize_t pwrite64(int fd, const void* buffer, size_t size, off_t at) {
    return pwrite(fd, buffer, size, at);
}

ssize_t write(int fd, const void* buffer, size_t size) {
    READY(write);
    if (!IsWatched(fd)) return real_write(fd, buffer, size);
    const enum verdict verdict = Decide(kWrite, "write", names[fd]);
    if (verdict == kRefuse) return -1;
    if (KeepsChanges()) RememberChange(names[fd], lseek(fd, 0, SEEK_CUR), size);
    if (verdict == kGoOn) return real_write(fd, buffer, size);
    const ssize_t half = real_write(fd, buffer, size / 2);
    AfterHalf();
    return half;
}

ssize_t writev(int fd, const struct iovec* pieces, int count) {
    READY(writev);
    if (!IsWatched(fd)) return real_writev(fd, pieces, count);
    const enum verdict verdict = Decide(kWrite, "writev", names[fd]);
    if (verdict == kRefuse) return -1;
    size_t size = 0;
    for (int i = 0; i < count; ++i)
        size += pieces[i].iov_len;
    if (KeepsChanges()) RememberChange(names[fd], lseek(fd, 0, SEEK_CUR), size);
    if (verdict == kGoOn) return real_writev(fd, pieces, count);
    const ssize_t half = real_writev(fd, pieces, (count + 1) / 2);
    AfterHalf();
    return half;
}

ssize_t sendfile(int to, int from, off_t* at, size_t size) {
    READY(sendfile);
    if (!IsWatched(to)) return real_sendfile(to, from, at, size);
    const enum verdict verdict = Decide(kWrite, "sendfile", names[to]);
    if (verdict == kRefuse) return -1;
    if (KeepsChanges()) RememberChange(names[to], lseek(to, 0, SEEK_CUR), size);
    if (verdict == kGoOn) return real_sendfile(to, from, at, size);
    const ssize_t half = real_sendfile(to, from, at, size / 2);
    AfterHalf();
    return half;
}

ssize_t sendfile64(int to, int from, off_t* at, size_t size) {
    return sendfile(to, from, at, size);
}

ssize_t copy_file_range(int from, off_t* fromAt, int to, off_t* toAt, size_t size, unsigned flags) {
    READY(copy_file_range);
    if (!IsWatched(to)) return real_copy_file_range(from, fromAt, to, toAt, size, flags);
    const enum verdict verdict = Decide(kWrite, "copy_file_range", names[to]);
    if (verdict == kRefuse) return -1;
    if (KeepsChanges()) RememberChange(names[to], toAt != NULL ? *toAt : lseek(to, 0, SEEK_CUR), size);
    if (verdict == kGoOn) return real_copy_file_range(from, fromAt, to, toAt, size, flags);
    const ssize_t half = real_copy_file_range(from, fromAt, to, toAt, size / 2, flags);
    AfterHalf();
    return half;
}

size_t fwrite(const void* data, size_t size, size_t count, FILE* file) {
    READY(fwrite);
    const int fd = fileno(file);
    if (!IsWatched(fd)) return real_fwrite(data, size, count, file);
    const enum verdict verdict = Decide(kWrite, "fwrite", names[fd]);
    if (verdict == kRefuse) return 0;
    if (verdict == kGoOn) return real_fwrite(data, size, count, file);
    const size_t half = real_fwrite(data, 1, size * count / 2, file) / (size > 0 ? size : 1);
    AfterHalf();
    errno = strikeErrno;
    return half;
}

int fflush(FILE* file) {
    READY(fflush);
    if (file == NULL || !IsWatched(fileno(file))) return real_fflush(file);
    const int fd = fileno(file);
    if (Decide(kWrite, "fflush", names[fd]) != kGoOn) {
        AfterHalf();
        return EOF;
    }
    return real_fflush(file);
}

/* ---- synchronizing, truncating */

int fsync(int fd) {
    READY(fsync);
    if (!IsWatched(fd)) return real_fsync(fd);
    if (Decide(kSync, "fsync", names[fd]) != kGoOn) return -1;
    const int code = real_fsync(fd);
    if (code == 0) ForgetChanges(names[fd]);
    if (code == 0) ForgetMoves(names[fd]);
    return code;
}

int fdatasync(int fd) {
    READY(fdatasync);
    if (!IsWatched(fd)) return real_fdatasync(fd);
    if (Decide(kSync, "fdatasync", names[fd]) != kGoOn) return -1;
    const int code = real_fdatasync(fd);
    if (code == 0) ForgetChanges(names[fd]);
    return code;
}

int ftruncate(int fd, off_t size) {
    READY(ftruncate);
    if (!IsWatched(fd)) return real_ftruncate(fd, size);
    if (Decide(kTruncate, "ftruncate", names[fd]) != kGoOn) return -1;
    struct stat about;
    if (KeepsChanges() && syscall(SYS_fstat, fd, &about) == 0 && about.st_size > size)
        RememberChange(names[fd], size, (size_t)(about.st_size - size));
    return real_ftruncate(fd, size);
}

int ftruncate64(int fd, off_t size) {
    return ftruncate(fd, size);
}

int posix_fallocate(int fd, off_t at, off_t size) {
    READY(posix_fallocate);
    if (IsWatched(fd) && Decide(kTruncate, "posix_fallocate", names[fd]) != kGoOn) return errno;
    return real_posix_fallocate(fd, at, size);
}

int posix_fallocate64(int fd, off_t at, off_t size) {
    return posix_fallocate(fd, at, size);
}

/* ---- names */

int renameat2(int fromDirectory, const char* from, int toDirectory, const char* to, unsigned flags) {
    READY(renameat2);
    char a[MAX_NAME];
    char b[MAX_NAME];
    const int isFrom = BelowFolder(from, a);
    const int isTo = BelowFolder(to, b);
    if (!isFrom && !isTo) return real_renameat2(fromDirectory, from, toDirectory, to, flags);
    if (Decide(kRename, "rename", isTo ? b : a) != kGoOn) return -1;
    const int keeps = isTo && KeepsChanges();
    if (keeps) RememberMove(b);
    const int code = real_renameat2(fromDirectory, from, toDirectory, to, flags);
    if (code == 0 && isFrom && isTo) MoveChanges(a, b);
    const int failed = errno;
    if (code != 0 && keeps) ForgetMove();
    errno = failed;
    return code;
}

int renameat(int fromDirectory, const char* from, int toDirectory, const char* to) {
    return renameat2(fromDirectory, from, toDirectory, to, 0);
}

int rename(const char* from, const char* to) {
    return renameat2(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int linkat(int fromDirectory, const char* from, int toDirectory, const char* to, int flags) {
    READY(linkat);
    char absolute[MAX_NAME];
    if (BelowFolder(to, absolute) && Decide(kRename, "link", absolute) != kGoOn) return -1;
    return real_linkat(fromDirectory, from, toDirectory, to, flags);
}

int link(const char* from, const char* to) {
    return linkat(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int unlinkat(int directory, const char* path, int flags) {
    READY(unlinkat);
    char absolute[MAX_NAME];
    if ((directory == AT_FDCWD || path[0] == '/') && BelowFolder(path, absolute) &&
        Decide(kUnlink, "unlink", absolute) != kGoOn)
        return -1;
    return real_unlinkat(directory, path, flags);
}

int unlink(const char* path) {
    return unlinkat(AT_FDCWD, path, 0);
}

int remove(const char* path) {
    struct stat about;
    if (stat(path, &about) != 0) return -1;
    return unlinkat(AT_FDCWD, path, S_ISDIR(about.st_mode) ? AT_REMOVEDIR : 0);
}

/* ---- locks, mappings */

int fcntl(int fd, int command, ...) {
    READY(fcntl);
    va_list arguments;
    va_start(arguments, command);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    switch (command) {
        case F_SETLK:
        case F_SETLKW:
        case F_OFD_SETLK:
        case F_OFD_SETLKW:
            /* Giving a lock back does not fail. */
            if (IsWatched(fd) && ((const struct flock*)argument)->l_type != F_UNLCK &&
                Decide(kLock, "fcntl", names[fd]) != kGoOn)
                return -1;
            break;
        default:
            break;
    }
    return real_fcntl(fd, command, argument);
}

int fcntl64(int fd, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    return fcntl(fd, command, argument);
}

int flock(int fd, int operation) {
    READY(flock);
    if (IsWatched(fd) && Decide(kLock, "flock", names[fd]) != kGoOn) return -1;
    return real_flock(fd, operation);
}

void* mmap(void* address, size_t length, int protection, int flags, int fd, off_t at) {
    READY(mmap);
    if (IsWatched(fd) && Decide(kMap, "mmap", names[fd]) != kGoOn) return MAP_FAILED;
    return real_mmap(address, length, protection, flags, fd, at);
}

void* mmap64(void* address, size_t length, int protection, int flags, int fd, off_t at) {
    return mmap(address, length, protection, flags, fd, at);
}

/* ---- memory */

static int Refused(void) {
    if (!atomic_load_explicit(&armed, memory_order_relaxed)) return 0;
    if (Decide(kAlloc, "alloc", "-") == kGoOn) return 0;
    errno = ENOMEM;
    return 1;
}

void* malloc(size_t size) {
    return Refused() ? NULL : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    return Refused() ? NULL : __libc_calloc(count, size);
}

void* realloc(void* block, size_t size) {
    return Refused() ? NULL : __libc_realloc(block, size);
}

void* memalign(size_t alignment, size_t size) {
    return Refused() ? NULL : __libc_memalign(alignment, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    return Refused() ? NULL : __libc_memalign(alignment, size);
}

int posix_memalign(void** block, size_t alignment, size_t size) {
    if (Refused()) return ENOMEM;
    *block = __libc_memalign(alignment, size);
    return *block != NULL || size == 0 ? 0 : ENOMEM;
}
