// Memory that is refused while values are copied: std::bad_alloc, nothing else.

#include "tests/fakes/refused_memory.h"

#include <new>
#include <string>

#include <gtest/gtest.h>

#include "automation/object.h"

namespace vicenter::automation {
namespace {

// The allocation that fails, counted from now on.
struct Refusing {
    explicit Refusing(int allocation) {
        fakes::memory::refusals = 1;
        fakes::memory::granted = allocation;
    }
    Refusing(const Refusing&) = delete;
    Refusing& operator=(const Refusing&) = delete;
    ~Refusing() { fakes::memory::granted = -1; }
};

// The number of allocations that work needs, each of which has been refused once.
template <class Work>
int RefusedEachInTurn(Work work) {
    for (int refused = 0;; ++refused) {
        try {
            const Refusing refusing(refused);
            work();
        } catch (const std::bad_alloc&) {
            continue;
        }
        return refused;
    }
}

TEST(RefusedMemory, EndsTheCopyOfATextWithAnError) {
    const Variant text(std::string(100, 'x'));
    EXPECT_EQ(RefusedEachInTurn([&] { const Variant copy(text); }), 1);
    Variant number(7);
    EXPECT_GE(RefusedEachInTurn([&] { number = text; }), 1);
    EXPECT_EQ(number, text);
}

TEST(RefusedMemory, EndsACallsArgumentsWithAnError) {
    const std::string from(100, 'a');
    const std::string to(200, 'b');
    EXPECT_GE(RefusedEachInTurn([&] { const Arguments arguments{from, to, true}; }), 5);
}

TEST(RefusedMemory, EndsTheCopyOfAnArrayWithAnError) {
    const VariantArray items(20, Variant(std::string(100, 'x')));
    EXPECT_EQ(RefusedEachInTurn([&] { const VariantArray copy(items); }), 21);
}

}  // namespace
}  // namespace vicenter::automation
