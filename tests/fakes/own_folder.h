#pragma once

// A folder of a test's own until the end of the scope, whoever runs the same test at the same time: in
// another process, from another clone, as another user. Nothing else in a test names a place for temporary
// files.

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>

namespace vicenter::fakes {

class OwnFolder {
  public:
    OwnFolder() {
        std::random_device draw;
        do {
            const std::uint64_t number = static_cast<std::uint64_t>(draw()) << 32 | draw();
            path_ = std::filesystem::temp_directory_path() / ("vicenter-test-" + std::to_string(number));
        } while (!std::filesystem::create_directory(path_));
    }
    OwnFolder(const OwnFolder&) = delete;
    OwnFolder& operator=(const OwnFolder&) = delete;
    ~OwnFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    const std::filesystem::path& Path() const { return path_; }

  private:
    std::filesystem::path path_;
};

}  // namespace vicenter::fakes
