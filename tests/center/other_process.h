#pragma once

// The program itself in a process of its own, beside a window of this one.

#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/system/files.h"
#include "tests/host/demo_set.h"
#include "tests/host/program_run.h"

namespace vicenter::center::test {

// Runs `vicenter --account-set set arguments...` to its end; the exit code. input goes to its standard input.
inline int RunProgram(const host::test::TestFolder& folder, const std::string& set,
                      std::vector<std::string> arguments, const std::string& input = {}) {
    const std::string given = folder.Path("input.txt");
    std::ofstream(system::PathFromUtf8(given), std::ios::binary) << input;
    arguments.insert(arguments.begin(), {"--account-set", set});
    host::test::RunningProgram program(VICENTER_PROGRAM, arguments, given, folder.Path("output.txt"));
    return program.Wait().code;
}

// What it said last.
inline std::string Said(const host::test::TestFolder& folder) {
    std::ifstream in(system::PathFromUtf8(folder.Path("output.txt")), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace vicenter::center::test
