// by hand
// What is told to be saved is on the disk. A file system beneath SQLite remembers what has been synced; at
// every point of a save the power fails: what was not synced is thrown away, or half of it, and the set opens
// and holds the old state or the new one, and after the save has been acknowledged the new one.

#include <functional>
#include <map>

#include "tests/tsql/file/file_fixture.h"
#include "tsql/sqlite/file_system.h"

namespace vicenter::tsql::engine {
namespace {

// Which of the writes that were not synced reach the disk by chance.
enum class Chance { kNone, kEverySecond };

// What the disk holds of one file.
struct Disk {
    struct Change {
        std::int64_t offset;
        std::string bytes;  // none: the file is cut at the offset
    };
    std::string synced;
    std::vector<Change> since;

    std::string After(Chance chance) const {
        std::string content = synced;
        if (chance == Chance::kNone) return content;
        for (std::size_t i = 0; i < since.size(); i += 2) {
            const auto offset = static_cast<std::size_t>(since[i].offset);
            if (since[i].bytes.empty()) {
                content.resize(std::min(content.size(), offset));
                continue;
            }
            if (content.size() < offset + since[i].bytes.size())
                content.resize(offset + since[i].bytes.size());
            content.replace(offset, since[i].bytes.size(), since[i].bytes);
        }
        return content;
    }
};

struct World {
    std::map<std::string, Disk> disks;
    std::function<void()> atPoint;  // before each change
    bool inPoint = false;
};

World& Now() {
    static World world;
    return world;
}

void Point() {
    if (Now().inPoint || !Now().atPoint) return;
    Now().inPoint = true;
    Now().atPoint();
    Now().inPoint = false;
}

std::string ContentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

struct PowerFile {
    sqlite3_file base;
    Disk* disk;
    sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

PowerFile& Of(sqlite3_file* file) {
    return *reinterpret_cast<PowerFile*>(file);
}

sqlite3_file* Real(sqlite3_file* file) {
    return Of(file).Real();
}

int Write(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 offset) {
    Point();
    const auto* text = static_cast<const char*>(bytes);
    Of(file).disk->since.push_back({offset, std::string(text, static_cast<std::size_t>(count))});
    return Real(file)->pMethods->xWrite(Real(file), bytes, count, offset);
}

int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    Point();
    Of(file).disk->since.push_back({size, {}});
    return Real(file)->pMethods->xTruncate(Real(file), size);
}

int Sync(sqlite3_file* file, int flags) {
    Point();
    Disk& disk = *Of(file).disk;
    sqlite3_int64 size = 0;
    Real(file)->pMethods->xFileSize(Real(file), &size);
    disk.synced.resize(static_cast<std::size_t>(size));
    Real(file)->pMethods->xRead(Real(file), disk.synced.data(), static_cast<int>(size), 0);
    disk.since.clear();
    return Real(file)->pMethods->xSync(Real(file), flags);
}

const sqlite3_io_methods kPowerMethods = {
    2,
    [](sqlite3_file* file) { return Real(file)->pMethods->xClose(Real(file)); },
    [](sqlite3_file* file, void* bytes, int count, sqlite3_int64 offset) {
        return Real(file)->pMethods->xRead(Real(file), bytes, count, offset);
    },
    Write,
    Truncate,
    Sync,
    [](sqlite3_file* file, sqlite3_int64* size) { return Real(file)->pMethods->xFileSize(Real(file), size); },
    [](sqlite3_file* file, int level) { return Real(file)->pMethods->xLock(Real(file), level); },
    [](sqlite3_file* file, int level) { return Real(file)->pMethods->xUnlock(Real(file), level); },
    [](sqlite3_file* file, int* reserved) {
        return Real(file)->pMethods->xCheckReservedLock(Real(file), reserved);
    },
    [](sqlite3_file* file, int operation, void* argument) {
        return Real(file)->pMethods->xFileControl(Real(file), operation, argument);
    },
    [](sqlite3_file* file) { return Real(file)->pMethods->xSectorSize(Real(file)); },
    [](sqlite3_file* file) { return Real(file)->pMethods->xDeviceCharacteristics(Real(file)); },
    [](sqlite3_file* file, int region, int bytes, int extend, void volatile** memory) {
        return Real(file)->pMethods->xShmMap(Real(file), region, bytes, extend, memory);
    },
    [](sqlite3_file* file, int offset, int count, int flags) {
        return Real(file)->pMethods->xShmLock(Real(file), offset, count, flags);
    },
    [](sqlite3_file* file) { Real(file)->pMethods->xShmBarrier(Real(file)); },
    [](sqlite3_file* file, int remove) { return Real(file)->pMethods->xShmUnmap(Real(file), remove); },
    nullptr,
    nullptr,
};

const char* PowerFileSystem() {
    static sqlite3_vfs* const real = sqlite3_vfs_find(AccountSetFileSystem());
    static sqlite3_vfs power = [] {
        sqlite3_vfs made = *real;
        made.zName = "power";
        made.pNext = nullptr;
        made.szOsFile = static_cast<int>(sizeof(PowerFile)) + real->szOsFile;
        made.xOpen = [](sqlite3_vfs*, const char* path, sqlite3_file* file, int flags, int* opened) {
            if (path == nullptr) return real->xOpen(real, path, file, flags, opened);
            if (!Now().disks.contains(path)) Now().disks[path].synced = ContentOf(path);
            file->pMethods = nullptr;
            Of(file).disk = &Now().disks[path];
            const int code = real->xOpen(real, path, Real(file), flags, opened);
            if (code == SQLITE_OK) file->pMethods = &kPowerMethods;
            return code;
        };
        // Without a sync of the folder a deleted file may be there again: its disk is kept.
        made.xDelete = [](sqlite3_vfs*, const char* path, int sync) {
            Point();
            if (sync != 0) Now().disks.erase(path);
            return real->xDelete(real, path, sync);
        };
        return made;
    }();
    static const int registered = sqlite3_vfs_register(&power, 0);
    return registered == SQLITE_OK ? power.zName : nullptr;
}

class PowerCutTest : public SetFileTest {
  protected:
    ~PowerCutTest() override { Now() = World(); }

    // The state that a set holds after the power has failed now: the number in each of its rows.
    std::string StateAfterCut(Chance chance) {
        const std::string folder = (folder_ / "after").string();
        std::filesystem::remove_all(folder);
        std::filesystem::create_directory(folder);
        for (const auto& [path, disk] : Now().disks) {
            const std::string content = disk.After(chance);
            if (content.empty() && path != Path()) continue;
            std::ofstream(folder + "/" + std::filesystem::path(path).filename().string(), std::ios::binary)
                << content;
        }
        SessionOptions options = Existing();
        options.path = folder + "/set.vas";
        try {
            Session session(options);
            return RunOn(session, "select count(*) as n, min(a) as low, max(a) as high from t");
        } catch (const SqlError& error) {
            return error.Text();
        }
    }
    static std::string State(long version) {
        return "n:int low:int high:int\n40|" + std::to_string(version) + "|" + std::to_string(version);
    }
};

TEST_F(PowerCutTest, A_save_that_was_acknowledged_survives_and_one_that_was_not_is_all_or_nothing) {
    ASSERT_EQ(Run("create table t (a int, filler nvarchar(200))"), "");
    const auto save = [this](long version) {
        std::string batch = "delete from t\n";
        for (int i = 0; i < 40; ++i)
            batch +=
                "insert into t values(" + std::to_string(version) + ", '" + std::string(150, 'x') + "')\n";
        return Run(batch);
    };
    ASSERT_EQ(save(1), "");
    session_.reset();

    SessionOptions options = Existing();
    options.fileSystem = PowerFileSystem();
    ASSERT_NE(options.fileSystem, nullptr);
    session_ = std::make_unique<Session>(options);
    long acknowledged = 1;
    int points = 0;
    Now().atPoint = [&] {
        ++points;
        for (const Chance chance : {Chance::kNone, Chance::kEverySecond}) {
            const std::string state = StateAfterCut(chance);
            EXPECT_TRUE(state == State(acknowledged) || state == State(acknowledged + 1))
                << "point " << points << " after save " << acknowledged << ": " << state;
        }
    };
    for (long version = 2; version <= 4; ++version) {
        ASSERT_EQ(save(version), "");
        acknowledged = version;
        EXPECT_EQ(StateAfterCut(Chance::kNone), State(version)) << "acknowledged and lost";
        if (version != 3) continue;
        EXPECT_TRUE(First().BringHome());
    }
    session_.reset();
    EXPECT_EQ(StateAfterCut(Chance::kNone), State(4));
    EXPECT_GT(points, 20);
}

}  // namespace
}  // namespace vicenter::tsql::engine
