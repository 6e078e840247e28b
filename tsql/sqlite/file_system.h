#pragma once

// The files of an account set as SQLite sees them.
//
// On POSIX systems SQLite's own locks are record locks of the process: whoever closes any descriptor of the
// file (a file dialog, a backup program's library, another SQLite of the host) drops them all, and two
// writers then damage the set. Here every connection locks through an open file description of its own, on
// the same bytes, so that SQLite elsewhere is kept out as ever and nobody else can drop them.

namespace vicenter::tsql::engine {

// The name for sqlite3_open_v2; registers the file system when it is first asked for. None: SQLite's own.
const char* AccountSetFileSystem();

// What became of the file since a connection opened it.
enum class FileState : int {
    kSame,
    kGone,         // deleted or moved away
    kReplaced,     // another file stands in its place
    kOverwritten,  // its content is another, and no checkpoint has written it
    kHeldAbroad,   // others work on the file that stood in its place before
};

// A file control of the main file: fills in an int, a FileState. Not answered by SQLite's own file systems.
inline constexpr int kAskFileState = 0x56430001;

}  // namespace vicenter::tsql::engine
