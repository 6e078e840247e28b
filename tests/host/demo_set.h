#pragma once

// Account sets for tests: made once per test program, copied for each test into a folder of its own.

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "host/account_set.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/system/files.h"

namespace vicenter::host::test {

// A fresh folder, removed at the end of the scope.
class TestFolder {
  public:
    TestFolder() {
        static std::atomic<int> count{0};
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        std::string name = "vicenter-host-" +
                           std::to_string(testing::UnitTest::GetInstance()->random_seed()) + "-" +
                           std::to_string(++count) + "-" + (info ? info->name() : "shared");
        for (char& c : name) {
            if (c == '/') c = '_';
        }
        path_ = std::filesystem::temp_directory_path() / (name + "-" + Unique());
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder() {
        ado::CloseIdleAccountSets();
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::string Path(const std::string& file = {}) const {
        return file.empty() ? system::PathToUtf8(path_)
                            : system::PathToUtf8(path_ / system::PathFromUtf8(file));
    }

  private:
    // Test programs run side by side; the address space layout and the clock keep their folders apart.
    static std::string Unique() {
        static const auto start = std::filesystem::file_time_type::clock::now().time_since_epoch().count();
        static const int marker = 0;
        return std::to_string(start) + std::to_string(reinterpret_cast<std::uintptr_t>(&marker) >> 12);
    }

    std::filesystem::path path_;
};

// The demo set, or one without ledger data, that this test program has made.
inline const std::string& OriginalSet(bool demo) {
    static TestFolder folder;
    static const auto make = [](bool withDemo) {
        RegisterProviders();
        std::string file = folder.Path(withDemo ? "demo.vas" : "empty.vas");
        CreateAccountSetFile(file, {withDemo, 0});
        return file;
    };
    if (demo) {
        static const std::string file = make(true);
        return file;
    }
    static const std::string file = make(false);
    return file;
}

// A copy for one test.
inline std::string CopySet(const TestFolder& folder, bool demo = true) {
    std::string file = folder.Path("set.vas");
    std::filesystem::copy_file(system::PathFromUtf8(OriginalSet(demo)), system::PathFromUtf8(file));
    return file;
}

}  // namespace vicenter::host::test
