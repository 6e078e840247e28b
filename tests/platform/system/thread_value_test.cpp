#include "platform/system/thread_value.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace vicenter::system {
namespace {

std::atomic<int> live{0};

struct Counted {
    Counted() { ++live; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --live; }
    // Room on the heap, which suffers where it is given back twice or too late.
    std::vector<std::string> texts{std::string(100, 'x'), std::string(1000, 'y')};
};

TEST(ThreadValue, EachThreadHasItsOwnWhichEndsWithIt) {
    Counted& own = ValueOfThisThread<Counted>();
    own.texts.emplace_back("mine");
    EXPECT_EQ(&ValueOfThisThread<Counted>(), &own);
    const int before = live;
    for (int round = 0; round < 50; ++round) {
        std::thread([&] {
            Counted& others = ValueOfThisThread<Counted>();
            EXPECT_NE(&others, &own);
            EXPECT_EQ(others.texts.size(), 2U);
            others.texts.emplace_back(500, 'z');
        }).join();
        EXPECT_EQ(live, before);
    }
    EXPECT_EQ(own.texts.back(), "mine");
}

}  // namespace
}  // namespace vicenter::system
