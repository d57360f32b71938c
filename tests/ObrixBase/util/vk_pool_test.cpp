#include "ObrixBase/util/vk_pool.h"

#include <gtest/gtest.h>

TEST(VkPool, PiecesFollowEachOtherUntilABlockIsFullThenANewBlockStarts) {
    VK_Pool* pool = VK_pool_new(100);
    ASSERT_NE(pool, nullptr);
    auto* a = static_cast<unsigned char*>(VK_pool_alloc(pool, 30));
    auto* b = static_cast<unsigned char*>(VK_pool_alloc(pool, 30));
    EXPECT_EQ(b, a + 30); // no alignment added
    auto* c = static_cast<unsigned char*>(VK_pool_alloc(pool, 50));
    EXPECT_EQ(c, pool->blocks->data); // the start of a new current block
    EXPECT_EQ(pool->used, 50);
    EXPECT_EQ(VK_pool_alloc(pool, 101), nullptr);
    EXPECT_EQ(VK_pool_alloc(pool, 50), c + 50); // exactly filling a block is allowed
    EXPECT_EQ(VK_ll_length(pool->blocks), 2);
    VK_pool_free(&pool);
    EXPECT_EQ(pool, nullptr);
    VK_pool_free(&pool);
    EXPECT_EQ(VK_pool_alloc(nullptr, 1), nullptr);
}
