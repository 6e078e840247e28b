#pragma once

// The program itself in a process of its own, beside a window of this one.

#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/system/files.h"
#include "tests/host/demo_set.h"

extern char** environ;

namespace vicenter::center::test {

// Runs `vicenter --account-set set arguments...` to its end; the exit code. input goes to its standard input.
inline int RunProgram(const host::test::TestFolder& folder, const std::string& set,
                      std::vector<std::string> arguments, const std::string& input = {}) {
    const std::string given = folder.Path("input.txt");
    std::ofstream(system::PathFromUtf8(given), std::ios::binary) << input;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, given.c_str(), O_RDONLY, 0);
    const std::string said = folder.Path("output.txt");
    posix_spawn_file_actions_addopen(&actions, 1, said.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    arguments.insert(arguments.begin(), {VICENTER_PROGRAM, "--account-set", set});
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    pid_t pid = 0;
    EXPECT_EQ(0, posix_spawn(&pid, VICENTER_PROGRAM, &actions, nullptr, argv.data(), environ));
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    EXPECT_EQ(pid, waitpid(pid, &status, 0));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// What it said last.
inline std::string Said(const host::test::TestFolder& folder) {
    std::ifstream in(system::PathFromUtf8(folder.Path("output.txt")), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace vicenter::center::test
