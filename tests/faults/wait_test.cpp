// The drills' own judgement of what hangs.

#include <chrono>
#include <ctime>

#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/faults/program.h"

namespace vicenter::faults {
namespace {

using std::chrono::milliseconds;

pid_t Child(void (*work)()) {
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(3);
    }
    return child;
}

TEST(WaitForAChild, AProcessThatDoesNothingAnyMoreHangs) {
    const End end = WaitFor(Child([] {
                                for (;;)
                                    pause();
                            }),
                            milliseconds(700));
    EXPECT_TRUE(end.timedOut);
}

TEST(WaitForAChild, AProcessThatTakesLongButWorksIsWaitedFor) {
    const End end = WaitFor(Child([] {
                                const std::clock_t enough = std::clock() + CLOCKS_PER_SEC;
                                while (std::clock() < enough) {
                                }
                            }),
                            milliseconds(700));
    EXPECT_FALSE(end.timedOut);
    EXPECT_EQ(end.exitCode, 3);
}

}  // namespace
}  // namespace vicenter::faults
