// A process that has used SQL Server and ends without a word, when the threads that it had are no more: as on
// Windows, where a library goes after all other threads were ended wherever they stood, so in a process that
// was forked. Returns 0; to wait for such a thread is the failure.

#include <cstdio>
#include <cstdlib>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include "both_back_ends.h"

namespace {

constexpr unsigned kSecondsToEnd = 60;

int Run() {
    vicenter::ado_test::ServedBooks books;
    vicenter::ado::OdbcPooling pooling;
    pooling.longestIdle = std::chrono::milliseconds(1);
    vicenter::ado::SetOdbcPooling(pooling);
    books.Open()->Execute("select 1 as a");
    // The thread that watches has come so far as to close it.
    while (books.Server().OpenConnections() != 0)
        std::this_thread::yield();
    vicenter::ado::SetOdbcPooling({});
    books.Open()->Execute("select 1 as a");  // stays idle, and is watched
    const pid_t child = fork();
    if (child == 0) {
        alarm(kSecondsToEnd);
        std::exit(0);
    }
    int status = -1;
    if (child < 0 || waitpid(child, &status, 0) != child) return 1;
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return 0;
    std::fprintf(stderr, "the process did not end by itself: %d\n", status);
    return 1;
}

}  // namespace

int main() {
    try {
        return Run();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
