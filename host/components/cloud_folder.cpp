#include "host/components/cloud_folder.h"

#include <algorithm>
#include <fstream>

#include "automation/error.h"
#include "platform/system/file_replacement.h"
#include "platform/system/files.h"

namespace vicenter::host {

namespace fs = std::filesystem;
using system::PathFromUtf8;

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

}  // namespace

CloudFolder::CloudFolder(const std::string& place) : place_(PathFromUtf8(place)) {}

std::optional<fs::path> CloudFolder::PlaceOf(std::int32_t id) const {
    std::ifstream index(place_ / kIndexFile);
    std::int32_t at = kFirstId;
    for (std::string line; std::getline(index, line); ++at) {
        if (at == id) return place_ / PathFromUtf8(line);
    }
    return std::nullopt;
}

std::optional<fs::path> CloudFolder::Below(std::int32_t user, std::int32_t parent,
                                           std::string_view name) const {
    if (!IsPlainName(name)) return std::nullopt;
    const fs::path own = place_ / std::to_string(user);
    if (parent == 0) return own / PathFromUtf8(name);
    const auto folder = PlaceOf(parent);
    std::error_code failed;
    if (!folder || !fs::is_directory(*folder, failed)) return std::nullopt;
    // A folder of somebody else is no parent.
    const auto [end, ignored] = std::mismatch(own.begin(), own.end(), folder->begin(), folder->end());
    if (end != own.end()) return std::nullopt;
    return *folder / PathFromUtf8(name);
}

std::int32_t CloudFolder::IdOf(const fs::path& path) {
    const std::u8string relative = path.lexically_relative(place_).generic_u8string();
    const std::string wanted(relative.begin(), relative.end());
    std::int32_t id = kFirstId;
    std::ifstream index(place_ / kIndexFile);
    for (std::string line; std::getline(index, line); ++id) {
        if (line == wanted) return id;
    }
    std::ofstream more(place_ / kIndexFile, std::ios::app | std::ios::binary);
    more << wanted << '\n';
    if (!more.flush()) throw automation::Error(automation::error_number::kPathNotFound);
    return id;
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
    const fs::path target = *path / PathFromUtf8(name);
    try {
        system::ReplaceWithCopy(file, system::PathToUtf8(target));
    } catch (const automation::Error&) {
        return std::nullopt;
    }
    return IdOf(target);
}

}  // namespace vicenter::host
