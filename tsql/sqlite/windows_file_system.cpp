// SQLite's file system for Windows with its naps by our rule and paths of any length; see file_system.h.
//
// Nothing of our own is wanted for the locks: LockFileEx belongs to the open file, so that closing another
// handle of it, in this process or elsewhere, drops none. Nor can the file be lost: SQLite opens it without
// FILE_SHARE_DELETE, so that nobody can delete, move or replace it while it is open.

#include <string_view>

#include <sqlite3.h>

#include "tsql/sqlite/file_system.h"

namespace vicenter::tsql::engine {

namespace {

constexpr const char* kName = "vicenter";

// The one that takes paths of more than 260 characters.
sqlite3_vfs* Base() {
    static sqlite3_vfs* const base = sqlite3_vfs_find("win32-longpath");
    return base;
}

// Longer ones the system takes only in their long form, whole and with backslashes alone.
int FullPath(sqlite3_vfs*, const char* path, int bytes, char* full) {
    constexpr std::string_view kLong = "\\\\?\\";
    constexpr std::string_view kLongOnServer = "\\\\?\\UNC\\";
    constexpr std::size_t kShortEnough = 240;
    const int code = Base()->xFullPathname(Base(), path, bytes, full);
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

sqlite3_vfs MakeFileSystem() {
    sqlite3_vfs made = *Base();
    made.iVersion = 2;
    made.pNext = nullptr;
    made.zName = kName;
    made.pAppData = nullptr;
    made.xOpen = [](sqlite3_vfs*, const char* path, sqlite3_file* file, int flags, int* opened) {
        return Base()->xOpen(Base(), path, file, flags, opened);
    };
    made.xDelete = [](sqlite3_vfs*, const char* path, int sync) {
        return Base()->xDelete(Base(), path, sync);
    };
    made.xAccess = [](sqlite3_vfs*, const char* path, int flags, int* result) {
        return Base()->xAccess(Base(), path, flags, result);
    };
    made.xFullPathname = FullPath;
    made.xDlOpen = [](sqlite3_vfs*, const char* path) { return Base()->xDlOpen(Base(), path); };
    made.xDlError = [](sqlite3_vfs*, int bytes, char* text) { Base()->xDlError(Base(), bytes, text); };
    made.xDlSym = [](sqlite3_vfs*, void* library, const char* name) {
        return Base()->xDlSym(Base(), library, name);
    };
    made.xDlClose = [](sqlite3_vfs*, void* library) { Base()->xDlClose(Base(), library); };
    made.xRandomness = [](sqlite3_vfs*, int count, char* bytes) {
        return Base()->xRandomness(Base(), count, bytes);
    };
    made.xSleep = [](sqlite3_vfs*, int microseconds) {
        if (NapRule::Apply(std::chrono::microseconds(microseconds))) return microseconds;
        return Base()->xSleep(Base(), microseconds);
    };
    made.xCurrentTime = [](sqlite3_vfs*, double* now) { return Base()->xCurrentTime(Base(), now); };
    made.xGetLastError = [](sqlite3_vfs*, int bytes, char* text) {
        return Base()->xGetLastError(Base(), bytes, text);
    };
    made.xCurrentTimeInt64 = [](sqlite3_vfs*, sqlite3_int64* now) {
        return Base()->xCurrentTimeInt64(Base(), now);
    };
    return made;
}

}  // namespace

const char* AccountSetFileSystem() {
    static const bool registered = [] {
        sqlite3_initialize();
        if (Base() == nullptr) return false;
        static sqlite3_vfs system = MakeFileSystem();
        return sqlite3_vfs_register(&system, 0) == SQLITE_OK;
    }();
    return registered ? kName : nullptr;
}

}  // namespace vicenter::tsql::engine
