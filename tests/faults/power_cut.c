/* What a power cut takes back. The calls are the system's own, which nobody counts. */
#define _GNU_SOURCE
#include "tests/faults/power_cut.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

/* What has been written and not synchronized, newest first. */

struct change {
    struct change* next;
    char path[MAX_NAME];
    off_t at;
    size_t length;
    off_t sizeBefore;
    unsigned char bytes[];
};
static struct change* changes;

extern void* __libc_malloc(size_t);
extern void __libc_free(void*);

void RememberChange(const char* path, off_t at, size_t length) {
    const int saved = errno;
    const int fd = (int)syscall(SYS_openat, AT_FDCWD, path, O_RDONLY | O_CLOEXEC, 0);
    struct stat about;
    if (fd >= 0 && syscall(SYS_fstat, fd, &about) == 0 && S_ISREG(about.st_mode)) {
        struct change* change = __libc_malloc(sizeof(struct change) + length);
        if (change != NULL) {
            strncpy(change->path, path, MAX_NAME - 1);
            change->path[MAX_NAME - 1] = 0;
            change->at = at;
            change->sizeBefore = about.st_size;
            const ssize_t old = syscall(SYS_pread64, fd, change->bytes, length, at);
            change->length = old > 0 ? (size_t)old : 0;
            change->next = changes;
            changes = change;
        }
    }
    if (fd >= 0) syscall(SYS_close, fd);
    errno = saved;
}

void ForgetChanges(const char* path) {
    for (struct change** at = &changes; *at != NULL;) {
        struct change* change = *at;
        if (strcmp(change->path, path) == 0) {
            *at = change->next;
            __libc_free(change);
        } else {
            at = &change->next;
        }
    }
}

void MoveChanges(const char* from, const char* to) {
    ForgetChanges(to);
    for (struct change* change = changes; change != NULL; change = change->next) {
        if (strcmp(change->path, from) == 0) {
            strncpy(change->path, to, MAX_NAME - 1);
            change->path[MAX_NAME - 1] = 0;
        }
    }
}

void TakeBackChanges(void) {
    for (const struct change* change = changes; change != NULL; change = change->next) {
        const int fd = (int)syscall(SYS_openat, AT_FDCWD, change->path, O_WRONLY | O_CLOEXEC, 0);
        if (fd < 0) continue; /* deleted meanwhile */
        if (change->length > 0) syscall(SYS_pwrite64, fd, change->bytes, change->length, change->at);
        syscall(SYS_ftruncate, fd, change->sizeBefore);
        syscall(SYS_close, fd);
    }
}

/* Renames whose folder has not been synchronized since, newest first. */

struct move {
    struct move* next;
    char to[MAX_NAME];
    char kept[MAX_NAME]; /* a second name of what stood there before; empty when nothing did */
};
static struct move* moves;

void RememberMove(const char* to) {
    static int count;
    struct move* move = __libc_malloc(sizeof(struct move));
    if (move == NULL) return;
    strcpy(move->to, to);
    const char* name = strrchr(to, '/') + 1;
    const int written =
        snprintf(move->kept, MAX_NAME, "%.*s.before-the-power-cut-%d", (int)(name - to), to, ++count);
    if (written >= MAX_NAME || syscall(SYS_linkat, AT_FDCWD, to, AT_FDCWD, move->kept, 0) != 0)
        move->kept[0] = 0;
    move->next = moves;
    moves = move;
}

void TakeBackMoves(void) {
    for (const struct move* move = moves; move != NULL; move = move->next) {
        syscall(SYS_unlink, move->to);
        if (move->kept[0] != 0) syscall(SYS_rename, move->kept, move->to);
    }
}

static int StandsIn(const char* path, const char* directory) {
    const size_t length = strlen(directory);
    return directory[0] == 0 || (strncmp(path, directory, length) == 0 && path[length] == '/' &&
                                 strchr(path + length + 1, '/') == NULL);
}

/* The last one, which did not come about. */
void ForgetMove(void) {
    struct move* move = moves;
    if (move == NULL) return;
    if (move->kept[0] != 0) syscall(SYS_unlink, move->kept);
    moves = move->next;
    __libc_free(move);
}

/* All of them for the empty name. */
void ForgetMoves(const char* directory) {
    for (struct move** at = &moves; *at != NULL;) {
        struct move* move = *at;
        if (StandsIn(move->to, directory)) {
            if (move->kept[0] != 0) syscall(SYS_unlink, move->kept);
            *at = move->next;
            __libc_free(move);
        } else {
            at = &move->next;
        }
    }
}
