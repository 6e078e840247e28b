// Memory that is refused while values are copied: std::bad_alloc, nothing else.

#include <cstdlib>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "automation/object.h"

namespace {

// The allocation that fails, counted from now on; below zero none does.
int untilRefused = -1;

struct Refusing {
    explicit Refusing(int allocation) { untilRefused = allocation; }
    Refusing(const Refusing&) = delete;
    Refusing& operator=(const Refusing&) = delete;
    ~Refusing() { untilRefused = -1; }
};

// Out of line, or the compiler sees malloc answered by delete.
[[gnu::noinline]] void* Allocate(std::size_t bytes) {
    if (untilRefused >= 0 && untilRefused-- == 0) throw std::bad_alloc();
    if (void* memory = std::malloc(bytes)) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void Free(void* memory) noexcept {
    std::free(memory);
}

}  // namespace

void* operator new(std::size_t bytes) {
    return Allocate(bytes);
}
void operator delete(void* memory) noexcept {
    Free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    Free(memory);
}

namespace vicenter::automation {
namespace {

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
