#include "platform/system/unfinished_file.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "automation/quietly.h"
#include "platform/system/files.h"
#include "platform/system/os.h"
#include "platform/system/path_in.h"
#include "platform/system/surroundings.h"

namespace vicenter::system {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kHead = ".vicenter-";
constexpr std::string_view kPart = ".part";
constexpr std::string_view kMark = ".mark";

fs::path MarkOf(const fs::path& file) {
    const std::string name = PathToUtf8(file.filename());
    const std::string core = name.starts_with(kHead) ? name.substr(kHead.size()) : name;
    return PathIn(file.parent_path(), std::string(kHead) + core + std::string(kMark));
}

// Only names that this program gives: its own parts and `T_<GUID>` with any extension.
bool IsOurs(std::string_view name) {
    constexpr std::string_view kPattern = "T_xxxxxxxx_xxxx_xxxx_xxxx_xxxxxxxxxxxx";
    if (name.ends_with(kPart)) return true;
    if (name.size() < kPattern.size()) return false;
    for (std::size_t i = 0; i < kPattern.size(); ++i) {
        const bool digit = (name[i] >= '0' && name[i] <= '9') || (name[i] >= 'A' && name[i] <= 'F');
        if (kPattern[i] == 'x' ? !digit : name[i] != kPattern[i]) return false;
    }
    return name.size() == kPattern.size() || name[kPattern.size()] == '.';
}

// False when something is left that could not be removed.
bool Remove(const fs::path& file) {
    bool all = true;
    for (const char* tail : {"", "-wal", "-shm", "-journal"}) {
        fs::path part = file;
        part += tail;
        std::error_code failed;
        if (!fs::is_directory(fs::symlink_status(part, failed))) fs::remove(part, failed);
        all = all && !fs::exists(fs::symlink_status(part, failed));
    }
    return all;
}

}  // namespace

UnfinishedFile::UnfinishedFile(std::string path) : path_(std::move(path)) {
    const fs::path mark = MarkOf(PathFromUtf8(path_));
    held_ = os::HeldFile::Make(PathToUtf8(mark));
    if (held_) mark_ = PathToUtf8(mark);
}

UnfinishedFile::~UnfinishedFile() {
    // The mark stays with what could not be removed, for whoever comes next.
    automation::Quietly([this] {
        std::error_code ignored;
        if (Remove(PathFromUtf8(path_)) && !mark_.empty()) fs::remove(PathFromUtf8(mark_), ignored);
    });
}

std::string UnfinishedFile::NewPath(const std::string& folder) {
    // The system's own, since a name must be unique whatever the surroundings say.
    static int count = 0;
    std::string unique = Surroundings::OfSystem().guids->New().value_or(std::string());
    std::erase_if(unique, [](char c) { return c == '{' || c == '}'; });
    if (unique.empty()) unique = std::to_string(os::ProcessId()) + "-" + std::to_string(++count);
    return PathToUtf8(PathIn(PathFromUtf8(folder), std::string(kHead) + unique + std::string(kPart)));
}

void RemoveLeftBehind(const std::string& folder) {
    const fs::path place = PathFromUtf8(folder);
    std::vector<std::string> marks;
    for (std::string& name : os::NamesIn(folder)) {
        if (name.starts_with(kHead) && name.ends_with(kMark)) marks.push_back(std::move(name));
    }
    for (const std::string& mark : marks) {
        const std::string path = PathToUtf8(PathIn(place, mark));
        const auto held = os::HeldFile::Take(path);
        if (!held) continue;
        const std::string core = mark.substr(kHead.size(), mark.size() - kHead.size() - kMark.size());
        if (IsOurs(core)) {
            const std::string name = core.ends_with(kPart) ? std::string(kHead) + core : core;
            if (!Remove(PathIn(place, name))) continue;
        }
        std::error_code ignored;
        fs::remove(PathFromUtf8(path), ignored);
    }
}

}  // namespace vicenter::system
