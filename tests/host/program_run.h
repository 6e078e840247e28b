#pragma once

// The program in a process of its own, which a test may kill or starve.

#include <cerrno>
#include <csignal>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;  // NOLINT: POSIX declares it so

namespace vicenter::host::test {

// Starts it with the file as its input and without output.
inline pid_t StartProgram(std::vector<std::string> arguments, const std::string& input = "/dev/null") {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, input.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    arguments.insert(arguments.begin(), VICENTER_PROGRAM);
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    pid_t pid = 0;
    EXPECT_EQ(0, posix_spawn(&pid, VICENTER_PROGRAM, &actions, nullptr, argv.data(), environ));
    posix_spawn_file_actions_destroy(&actions);
    return pid;
}

inline int WaitFor(pid_t pid) {
    int status = 0;
    EXPECT_EQ(pid, waitpid(pid, &status, 0));
    return status;
}

}  // namespace vicenter::host::test
