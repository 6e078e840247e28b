#include "support/growing_block.h"

#include <cstring>
#include <limits>

#include <gtest/gtest.h>

namespace vicenter::support {
namespace {

TEST(GrowingBlock, KeepsItsContentAsItGrowsAndShrinks) {
    GrowingBlock block;
    EXPECT_EQ(block.Size(), 0U);
    for (std::size_t size = 1; size <= 100'000; size += 97) {
        const std::size_t before = block.Size();
        block.Resize(size);
        ASSERT_EQ(block.Size(), size);
        std::memset(static_cast<char*>(block.Data()) + before, static_cast<int>(size % 100), size - before);
    }
    for (const std::size_t size : {50'000U, 5'000U, 98U}) {
        block.Resize(size);
        ASSERT_EQ(block.Size(), size);
        EXPECT_EQ(static_cast<const char*>(block.Data())[0], 1);
        EXPECT_EQ(static_cast<const char*>(block.Data())[97], 98);
    }
    block.Resize(0);
    EXPECT_EQ(block.Size(), 0U);
    block.Resize(10);
    EXPECT_EQ(block.Size(), 10U);
}

TEST(GrowingBlock, StaysAsItIsWhenThereIsNoMemory) {
    GrowingBlock block;
    block.Resize(3);
    std::memcpy(block.Data(), "abc", 3);
    EXPECT_THROW(block.Resize(std::numeric_limits<std::size_t>::max() / 2), std::bad_alloc);
    EXPECT_EQ(block.Size(), 3U);
    EXPECT_EQ(std::memcmp(block.Data(), "abc", 3), 0);
}

}  // namespace
}  // namespace vicenter::support
