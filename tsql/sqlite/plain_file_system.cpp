// Systems whose own locks belong to the open file need no other file system than SQLite's.

#include "tsql/sqlite/file_system.h"

namespace vicenter::tsql::engine {

const char* AccountSetFileSystem() {
    return nullptr;
}

}  // namespace vicenter::tsql::engine
