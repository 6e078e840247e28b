#include "tsql/sqlite/file_system_over.h"

#include <chrono>

#include "tsql/sqlite/file_system.h"

namespace vicenter::tsql::engine {

namespace {

constexpr int kVersion = 2;  // of the interface: as far as xCurrentTimeInt64

// Puts the call that passes a member's on to the base's own.
template <auto Member, class Result, class... Arguments>
void PassOn(sqlite3_vfs& over, Result (*sqlite3_vfs::*)(sqlite3_vfs*, Arguments...)) {
    over.*Member = [](sqlite3_vfs* self, Arguments... arguments) -> Result {
        sqlite3_vfs* const base = BaseOf(self);
        return (base->*Member)(base, arguments...);
    };
}

template <auto... Members>
void PassOnAll(sqlite3_vfs& over) {
    (PassOn<Members>(over, Members), ...);
}

}  // namespace

sqlite3_vfs* BaseOf(sqlite3_vfs* over) {
    return static_cast<sqlite3_vfs*>(over->pAppData);
}

sqlite3_vfs FileSystemOver(sqlite3_vfs& base, const char* name) {
    sqlite3_vfs over{};
    over.iVersion = kVersion;
    over.szOsFile = base.szOsFile;
    over.mxPathname = base.mxPathname;
    over.zName = name;
    over.pAppData = &base;
    PassOnAll<&sqlite3_vfs::xOpen, &sqlite3_vfs::xDelete, &sqlite3_vfs::xAccess, &sqlite3_vfs::xFullPathname,
              &sqlite3_vfs::xDlOpen, &sqlite3_vfs::xDlError, &sqlite3_vfs::xDlClose,
              &sqlite3_vfs::xRandomness, &sqlite3_vfs::xCurrentTime, &sqlite3_vfs::xGetLastError,
              &sqlite3_vfs::xCurrentTimeInt64>(over);
    over.xDlSym = [](sqlite3_vfs* self, void* library, const char* symbol) {
        return BaseOf(self)->xDlSym(BaseOf(self), library, symbol);
    };
    over.xSleep = [](sqlite3_vfs* self, int microseconds) {
        if (NapRule::Apply(std::chrono::microseconds(microseconds))) return microseconds;
        return BaseOf(self)->xSleep(BaseOf(self), microseconds);
    };
    return over;
}

}  // namespace vicenter::tsql::engine
