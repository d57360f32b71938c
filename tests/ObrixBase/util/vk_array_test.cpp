#include "ObrixBase/util/vk_array.h"

#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

TEST(VkArray, PutGrowsToTheIndexPlusTheIncrementAndKeepsWhatWasThere) {
    VK_Array* a = VK_array_new(8, 10, 5);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->count, 15);
    EXPECT_EQ(VK_array_get(a, 15), nullptr);
    EXPECT_EQ(VK_array_get(a, -1), nullptr);
    const unsigned char zeros[8] = {};
    EXPECT_EQ(std::memcmp(VK_array_get(a, 14), zeros, 8), 0);

    const double first = 1.5, late = 2.5;
    VK_array_put(a, 0, const_cast<double*>(&first));
    VK_array_put(a, 20, const_cast<double*>(&late));
    EXPECT_EQ(a->count, 25); // grown to index 20, not 21, plus the increment
    EXPECT_EQ(*static_cast<double*>(VK_array_get(a, 0)), 1.5);
    EXPECT_EQ(*static_cast<double*>(VK_array_get(a, 20)), 2.5);
    EXPECT_EQ(std::memcmp(VK_array_get(a, 24), zeros, 8), 0);
    VK_array_size(a, 3); // never shrinks
    EXPECT_EQ(a->count, 25);
    VK_array_free(&a);
    EXPECT_EQ(a, nullptr);

    // Without an increment, writing one past the end grows to exactly the old end: the slot
    // is still missing, so the caller must size the array first.
    VK_Array* tight = VK_array_new(4, 2, 0);
    const int value = 7;
    VK_array_put(tight, 2, const_cast<int*>(&value));
    EXPECT_EQ(tight->count, 2);
    EXPECT_EQ(VK_array_get(tight, 2), nullptr);
    VK_array_size(tight, 3);
    VK_array_put(tight, 2, const_cast<int*>(&value));
    EXPECT_EQ(*static_cast<int*>(VK_array_get(tight, 2)), 7);
    VK_array_free(&tight);
}

TEST(VkArray, IntPointerConversionsZeroExtend) {
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(VK_int2ptr(-1)), std::uintptr_t{0xFFFFFFFFu});
    EXPECT_EQ(VK_ptr2int(VK_int2ptr(-1)), -1);
    EXPECT_EQ(VK_ptr2int(VK_int2ptr(123456)), 123456);
    EXPECT_EQ(VK_ptr2int(reinterpret_cast<void*>(std::uintptr_t{0x100000002ull})), 2);
}
