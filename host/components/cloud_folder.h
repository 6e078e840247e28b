#pragma once

// A cloud drive that is a folder of this machine: below its place one folder for each user, below that the
// user's own.
//
// Folders and files have ids, as on any drive; they are kept in an index file at the place, one line each,
// and never given twice, so that an id stays good after a name has gone and come back. What somebody else
// puts into the folder by hand is found and gets its id then. Several processes may use one place at once.
// User-interface thread.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vicenter::host {

class CloudFolder {
  public:
    // The place itself is made with the first folder in it.
    explicit CloudFolder(const std::string& place);

    // parent: the id of the folder above, 0 for the user's topmost one. Nothing when there is no such folder.
    std::optional<std::int32_t> FindFolder(std::int32_t user, std::int32_t parent, std::string_view name);
    // The id of the folder, made when it is not there. Nothing for a name or a parent that cannot be.
    std::optional<std::int32_t> MakeFolder(std::int32_t user, std::int32_t parent, std::string_view name);
    // Copies a file into the folder, over one of the same name, whose id it keeps. Nothing when it cannot be.
    std::optional<std::int32_t> PutFile(std::int32_t folder, const std::string& file, std::string_view name);

  private:
    std::optional<std::filesystem::path> PlaceOf(std::int32_t id) const;
    std::optional<std::filesystem::path> Below(std::int32_t user, std::int32_t parent,
                                               std::string_view name) const;
    std::int32_t IdOf(const std::filesystem::path& path);
    std::string Index() const;

    std::filesystem::path place_;
};

}  // namespace vicenter::host
