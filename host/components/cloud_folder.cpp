#include "host/components/cloud_folder.h"

#include <algorithm>

#include "automation/error.h"
#include "platform/system/file_replacement.h"
#include "platform/system/files.h"
#include "platform/system/line_file.h"
#include "platform/system/path_in.h"

namespace vicenter::host {

namespace fs = std::filesystem;
using system::PathFromUtf8;
using system::PathIn;

namespace {

constexpr const char* kIndexFile = "index.txt";
// Ids begin above the codes that a drive's operations answer with.
constexpr std::int32_t kFirstId = 10'001;

// One name, which leads nowhere else.
bool IsPlainName(std::string_view name) {
    if (name.empty() || name == "." || name == "..") return false;
    return std::none_of(name.begin(), name.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x20 ||
               std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos;
    });
}

// Of long paths and of others the parts can be compared.
fs::path Plain(const fs::path& path) {
    const std::string text = system::PathToUtf8(path);
    return std::u8string(text.begin(), text.end());
}

}  // namespace

CloudFolder::CloudFolder(const std::string& place) : place_(PathFromUtf8(place)) {}

std::string CloudFolder::Index() const {
    return system::PathToUtf8(place_ / kIndexFile);
}

std::optional<fs::path> CloudFolder::PlaceOf(std::int32_t id) const {
    std::optional<fs::path> found;
    system::ForEachLine(Index(), [&](std::string_view line, std::size_t at) {
        if (kFirstId + static_cast<std::int32_t>(at) == id) found = PathIn(place_, line);
        return !found;
    });
    return found;
}

std::optional<fs::path> CloudFolder::Below(std::int32_t user, std::int32_t parent,
                                           std::string_view name) const {
    if (!IsPlainName(name)) return std::nullopt;
    const fs::path own = place_ / std::to_string(user);
    if (parent == 0) return PathIn(own, name);
    const auto folder = PlaceOf(parent);
    std::error_code failed;
    if (!folder || !fs::is_directory(*folder, failed)) return std::nullopt;
    // A folder of somebody else is no parent.
    const fs::path mine = Plain(own);
    const fs::path theirs = Plain(*folder);
    const auto [end, ignored] = std::mismatch(mine.begin(), mine.end(), theirs.begin(), theirs.end());
    if (end != mine.end()) return std::nullopt;
    return PathIn(*folder, name);
}

std::int32_t CloudFolder::IdOf(const fs::path& path) {
    const std::u8string relative = path.lexically_relative(place_).generic_u8string();
    const std::string wanted(relative.begin(), relative.end());
    const auto known = [&] {
        std::optional<std::int32_t> id;
        system::ForEachLine(Index(), [&](std::string_view line, std::size_t at) {
            if (line == wanted) id = kFirstId + static_cast<std::int32_t>(at);
            return !id;
        });
        return id;
    };
    if (const auto id = known()) return *id;
    // Others may add at the same time, the same path as well: the first line of it counts, for everybody.
    system::AddLine(Index(), wanted);
    if (const auto id = known()) return *id;
    throw automation::Error(automation::error_number::kPathNotFound);
}

std::optional<std::int32_t> CloudFolder::FindFolder(std::int32_t user, std::int32_t parent,
                                                    std::string_view name) {
    const auto path = Below(user, parent, name);
    std::error_code failed;
    if (!path || !fs::is_directory(*path, failed)) return std::nullopt;
    return IdOf(*path);
}

std::optional<std::int32_t> CloudFolder::MakeFolder(std::int32_t user, std::int32_t parent,
                                                    std::string_view name) {
    const auto path = Below(user, parent, name);
    if (!path) return std::nullopt;
    std::error_code failed;
    fs::create_directories(*path, failed);
    if (failed) return std::nullopt;
    return IdOf(*path);
}

std::optional<std::int32_t> CloudFolder::PutFile(std::int32_t folder, const std::string& file,
                                                 std::string_view name) {
    const auto path = PlaceOf(folder);
    std::error_code failed;
    if (!path || !IsPlainName(name) || !fs::is_directory(*path, failed)) return std::nullopt;
    const fs::path target = PathIn(*path, name);
    try {
        system::ReplaceWithCopy(file, system::PathToUtf8(target));
    } catch (const automation::Error&) {
        return std::nullopt;
    }
    return IdOf(target);
}

}  // namespace vicenter::host
