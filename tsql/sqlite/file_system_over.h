#pragma once

#include <sqlite3.h>

namespace vicenter::tsql::engine {

// A file system of SQLite's that leaves everything to another one and sleeps by the NapRule that holds; to be
// registered, or changed before that. Both must outlive it; pAppData is taken.
sqlite3_vfs FileSystemOver(sqlite3_vfs& base, const char* name);

// What such a one leaves everything to.
sqlite3_vfs* BaseOf(sqlite3_vfs* over);

}  // namespace vicenter::tsql::engine
