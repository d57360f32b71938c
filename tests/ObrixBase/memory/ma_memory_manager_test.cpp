#include "ObrixBase/memory/ma_memory_manager.h"

#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

TEST(MaMemoryManager, LiveAndPeakCountsFollowAllocationAndRelease) {
    MA_Stats before;
    MA_get_stats(&before);
    MA_reset_peak();

    std::vector<void*> blocks;
    for (size_t n : {1u, 100u, 0u, 4096u})
        blocks.push_back(MA_malloc(n, __LINE__, __FILE__));
    MA_Stats during;
    MA_get_stats(&during);
    EXPECT_EQ(during.live_bytes - before.live_bytes, 1u + 100u + 0u + 4096u);
    EXPECT_EQ(during.live_blocks - before.live_blocks, 4u);
    EXPECT_EQ(during.total_blocks - before.total_blocks, 4u);

    for (void* p : blocks) {
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % alignof(std::max_align_t), 0u);
    }
    std::memset(blocks[3], 0xAB, 4096); // the whole request is usable

    MA_free(blocks[3]);
    MA_free(blocks[1]);
    MA_free(nullptr);
    MA_Stats after;
    MA_get_stats(&after);
    EXPECT_EQ(after.live_bytes - before.live_bytes, 1u);
    EXPECT_EQ(after.peak_bytes, during.live_bytes);
    EXPECT_EQ(after.peak_blocks, during.live_blocks);

    MA_free(blocks[0]);
    MA_free(blocks[2]);
    MA_get_stats(&after);
    EXPECT_EQ(after.live_bytes, before.live_bytes);
    EXPECT_EQ(after.live_blocks, before.live_blocks);
    MA_get_stats(nullptr);
}

TEST(MaMemoryManager, AnImpossibleRequestFailsWithoutCountingAnything) {
    MA_Stats before, after;
    MA_get_stats(&before);
    EXPECT_EQ(MA_malloc(SIZE_MAX - 4, __LINE__, __FILE__), nullptr);
    MA_get_stats(&after);
    EXPECT_EQ(after.live_blocks, before.live_blocks);
}
