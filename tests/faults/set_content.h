#pragma once

// What an account set holds, read past the program under test: whether SQLite finds the file sound, and the
// templates with their lines, control rows and column profiles, or all that there is.

#include <filesystem>
#include <string>

namespace vicenter::faults {

struct SetContent {
    std::string fault;      // why it could not be read, or what the check found; empty for a sound set
    std::string templates;  // every row of the four template tables; the times of creation left out

    bool Sound() const { return fault.empty(); }
};

SetContent ReadSet(const std::filesystem::path& file);

// Every table with every row, the digests of a backup excepted; the reason where something cannot be read.
std::string ReadEverything(const std::filesystem::path& file);

}  // namespace vicenter::faults
