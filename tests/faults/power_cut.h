#pragma once

/* What a power cut takes back: bytes that no file was synchronized for, names whose folder was not. */

#include <stddef.h>
#include <sys/types.h>

#define MAX_NAME 512
#define HIDDEN __attribute__((visibility("hidden")))

/* Before so many bytes of the file are written anew. */
HIDDEN void RememberChange(const char* path, off_t at, size_t length);
HIDDEN void MoveChanges(const char* from, const char* to);
/* The file has been synchronized. */
HIDDEN void ForgetChanges(const char* path);

/* Before a file is renamed to that name. */
HIDDEN void RememberMove(const char* to);
/* The last one has not come about. */
HIDDEN void ForgetMove(void);
/* The folder has been synchronized; all of them for the empty name. */
HIDDEN void ForgetMoves(const char* directory);

HIDDEN void TakeBackChanges(void);
HIDDEN void TakeBackMoves(void);
