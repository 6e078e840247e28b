#pragma once

// Processes that are killed or starved in the middle of their work. The one place of the tests that needs
// POSIX.

#include <csignal>
#include <cstdint>
#include <ctime>
#include <functional>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vicenter::testing_support {

// Runs work in a process of its own and kills it without warning after so many microseconds.
inline void KillAfter(std::int64_t microseconds, const std::function<void()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(0);
    }
    const timespec wait{microseconds / 1000000, microseconds % 1000000 * 1000 + 3000000};
    nanosleep(&wait, nullptr);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

// Runs work in a process that cannot make any file longer than that; gives what work returns.
inline int RunWithFileLimit(std::uint64_t bytes, const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, bytes};
        setrlimit(RLIMIT_FSIZE, &limit);
        _exit(work());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace vicenter::testing_support
