#include "ObrixBase/util/vk_bitfield.h"

#include <gtest/gtest.h>

TEST(VkBitfield, BitsCountFromOneAndTheLowestBitOfEachByte) {
    unsigned char bits[3] = {};
    VK_bitfield_set(bits, 8);
    VK_bitfield_set(bits, 9);
    EXPECT_EQ(bits[0], 0x80);
    EXPECT_EQ(bits[1], 0x01);
    EXPECT_EQ(VK_bitfield_is_set(bits, 8), 128); // the masked byte, not 1
    EXPECT_EQ(VK_bitfield_is_set(bits, 7), 0);
    VK_bitfield_toggle(bits, 8);
    VK_bitfield_unset(bits, 9);
    EXPECT_EQ(VK_bitfield_is_clear(bits, 3), 1);

    const int list[] = {1, 17, 17, 24, 0};
    const int none[] = {2, 3, 0};
    VK_bitfield_set_multiple(bits, list);
    EXPECT_EQ(bits[2], 0x81);
    EXPECT_EQ(VK_bitfield_is_any_set(bits, list), 1);
    EXPECT_EQ(VK_bitfield_is_any_set(bits, none), 0);
    EXPECT_EQ(VK_bitfield_is_any_set(bits, list + 4), 0); // the empty list
    VK_bitfield_toggle_multiple(bits, list);              // 17 twice ends as it was
    EXPECT_EQ(bits[0], 0x00);
    EXPECT_EQ(bits[2], 0x01);
    VK_bitfield_unset_multiple(bits, list);
    EXPECT_EQ(VK_bitfield_is_clear(bits, 3), 1);
    bits[2] = 1;
    EXPECT_EQ(VK_bitfield_is_clear(bits, 2), 1); // counts bytes, not bits
    EXPECT_EQ(VK_bitfield_is_clear(bits, 0), 1);
}

TEST(VkBitfield, SetFromIntWritesOnlyTheBytesTheValueNeeds) {
    unsigned char bits[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    VK_bitfield_set_from_int(bits, 0);
    EXPECT_EQ(bits[0], 0x00);
    EXPECT_EQ(bits[1], 0xEE);
    VK_bitfield_set_from_int(bits, 256);
    EXPECT_EQ(bits[0], 0x00);
    EXPECT_EQ(bits[1], 0x01);
    EXPECT_EQ(bits[2], 0xEE);
    VK_bitfield_set_from_int(bits, -1); // refused: it would never shift down to zero
    EXPECT_EQ(bits[0], 0x00);
}
