#include <cstring>
#include <map>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "platform/system/icu_memory.h"

namespace vicenter::system {
namespace {

struct alignas(16) Room {
    std::byte bytes[16384];
};

TEST(ReserveOfMemory, GivesNoByteTwiceAndTakesEverythingBack) {
    Room room;
    Reserve reserve(room.bytes, sizeof room.bytes);
    std::mt19937 random(7);
    std::map<unsigned char*, std::pair<std::size_t, unsigned char>> held;
    int full = 0;
    for (int step = 0; step < 20000; ++step) {
        if (random() % 5 < 3) {
            const std::size_t bytes = random() % (random() % 10 == 0 ? 3000 : 90);
            auto* block = static_cast<unsigned char*>(reserve.Take(bytes));
            if (block == nullptr) {
                ++full;
                continue;
            }
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(block) % 16, 0U);
            ASSERT_TRUE(reserve.Holds(block) && reserve.Holds(block + Reserve::SizeOf(block) - 1));
            ASSERT_GE(Reserve::SizeOf(block), bytes);
            const auto mark = static_cast<unsigned char>(random());
            std::memset(block, mark, Reserve::SizeOf(block));
            ASSERT_TRUE(held.emplace(block, std::pair(Reserve::SizeOf(block), mark)).second);
        } else if (!held.empty()) {
            const auto some = std::next(held.begin(), static_cast<long>(random() % held.size()));
            for (std::size_t i = 0; i < some->second.first; ++i)
                ASSERT_EQ(some->first[i], some->second.second);
            reserve.GiveBack(some->first);
            held.erase(some);
        }
    }
    EXPECT_GT(full, 0);
    for (const auto& [block, what] : held)
        reserve.GiveBack(block);
    EXPECT_NE(reserve.Take(sizeof room.bytes - 16), nullptr);
}

TEST(ReserveOfMemory, HasNothingForWhatDoesNotFit) {
    Room room;
    Reserve reserve(room.bytes, sizeof room.bytes);
    EXPECT_EQ(reserve.Take(sizeof room.bytes), nullptr);
    EXPECT_EQ(reserve.Take(static_cast<std::size_t>(-1)), nullptr);
    EXPECT_FALSE(reserve.Holds(nullptr));
    EXPECT_FALSE(reserve.Holds(room.bytes + sizeof room.bytes));
    EXPECT_NE(reserve.Take(0), nullptr);
}

}  // namespace
}  // namespace vicenter::system
