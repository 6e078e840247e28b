#pragma once

// A folder whose files are replaced.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/system/file_replacement.h"
#include "platform/system/files.h"
#include "tests/fakes/fake_surroundings.h"

namespace vicenter::system {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

inline const Replaceable kWorkbooks{"工作簿", {"PK\x03\x04"}, {"xlsx"}};
inline const std::string kDatabase("SQLite format 3\0 and more", 25);

class FileReplacementTest : public testing::Test {
  protected:
    std::string Write(const std::string& name, const std::string& content) {
        std::string file = folder_.File(name);
        std::ofstream(PathFromUtf8(file), std::ios::binary) << content;
        return file;
    }
    static std::string Read(const std::string& file) {
        std::ifstream in(PathFromUtf8(file), std::ios::binary);
        std::ostringstream content;
        content << in.rdbuf();
        return content.str();
    }
    // Hidden ones, too.
    Lines Names() const {
        Lines names;
        for (const auto& entry : fs::directory_iterator(folder_.Path()))
            names.push_back(PathToUtf8(entry.path().filename()));
        std::sort(names.begin(), names.end());
        return names;
    }
    static void Replace(const std::string& file, const std::string& content) {
        FileReplacement replacement(file);
        std::ofstream(PathFromUtf8(replacement.Path()), std::ios::binary) << content;
        replacement.PutInPlace();
    }
    static bool MayBeWritten(const std::string& file) { return WhyNotWritable(file, kWorkbooks).empty(); }

    fakes::TemporaryFolder folder_;
};

}  // namespace vicenter::system
