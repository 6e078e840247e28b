// SQLite's file system for Windows with its naps by our rule and paths of any length; see file_system.h.
//
// Nothing of our own is wanted for the locks: LockFileEx belongs to the open file, so that closing another
// handle of it, in this process or elsewhere, drops none. Nor can the file be lost: SQLite opens it without
// FILE_SHARE_DELETE, so that nobody can delete, move or replace it while it is open.

#include <string_view>

#include <sqlite3.h>

#include "tsql/sqlite/file_system.h"
#include "tsql/sqlite/file_system_over.h"

namespace vicenter::tsql::engine {

namespace {

constexpr const char* kName = "vicenter";

// Longer ones the system takes only in their long form, whole and with backslashes alone.
int FullPath(sqlite3_vfs* self, const char* path, int bytes, char* full) {
    constexpr std::string_view kLong = "\\\\?\\";
    constexpr std::string_view kLongOnServer = "\\\\?\\UNC\\";
    constexpr std::size_t kShortEnough = 240;
    const int code = BaseOf(self)->xFullPathname(BaseOf(self), path, bytes, full);
    if (code != SQLITE_OK) return code;
    std::string_view found(full);
    if (found.size() < kShortEnough || found.starts_with(kLong)) return code;
    const bool onServer = found.starts_with("\\\\");
    if (onServer) found.remove_prefix(2);
    const std::string_view head = onServer ? kLongOnServer : kLong;
    char* whole = sqlite3_mprintf("%.*s%.*s", static_cast<int>(head.size()), head.data(),
                                  static_cast<int>(found.size()), found.data());
    if (whole == nullptr) return SQLITE_NOMEM;
    const bool fits = std::string_view(whole).size() < static_cast<std::size_t>(bytes);
    if (fits) sqlite3_snprintf(bytes, full, "%s", whole);
    sqlite3_free(whole);
    return fits ? SQLITE_OK : SQLITE_CANTOPEN;
}

sqlite3_vfs MakeFileSystem(sqlite3_vfs& base) {
    sqlite3_vfs made = FileSystemOver(base, kName);
    made.xFullPathname = FullPath;
    return made;
}

}  // namespace

const char* AccountSetFileSystem() {
    static const bool registered = [] {
        sqlite3_initialize();
        // The one that takes paths of more than 260 characters.
        sqlite3_vfs* const base = sqlite3_vfs_find("win32-longpath");
        if (base == nullptr) return false;
        static sqlite3_vfs system = MakeFileSystem(*base);
        return sqlite3_vfs_register(&system, 0) == SQLITE_OK;
    }();
    return registered ? kName : nullptr;
}

}  // namespace vicenter::tsql::engine
