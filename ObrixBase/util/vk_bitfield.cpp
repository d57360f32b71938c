#include "ObrixBase/util/vk_bitfield.h"

namespace {

// Byte and mask of a 1-based bit number; the caller has checked n >= 1.
unsigned char& byteOf(unsigned char* bits, int n) {
    return bits[(n - 1) / 8];
}
unsigned char maskOf(int n) {
    return static_cast<unsigned char>(1u << ((n - 1) % 8));
}

template <class Apply>
void forEachBit(unsigned char* bits, const int* list, Apply apply) {
    if (!bits || !list)
        return;
    for (; *list; ++list)
        if (*list > 0)
            apply(bits, *list);
}

} // namespace

extern "C" {

void VK_bitfield_set(unsigned char* bits, int n) {
    if (bits && n > 0)
        byteOf(bits, n) |= maskOf(n);
}

void VK_bitfield_unset(unsigned char* bits, int n) {
    if (bits && n > 0)
        byteOf(bits, n) &= static_cast<unsigned char>(~maskOf(n));
}

void VK_bitfield_toggle(unsigned char* bits, int n) {
    if (bits && n > 0)
        byteOf(bits, n) ^= maskOf(n);
}

int VK_bitfield_is_set(const unsigned char* bits, int n) {
    if (!bits || n < 1)
        return 0;
    return bits[(n - 1) / 8] & maskOf(n);
}

void VK_bitfield_set_multiple(unsigned char* bits, const int* list) {
    forEachBit(bits, list, VK_bitfield_set);
}

void VK_bitfield_unset_multiple(unsigned char* bits, const int* list) {
    forEachBit(bits, list, VK_bitfield_unset);
}

void VK_bitfield_toggle_multiple(unsigned char* bits, const int* list) {
    forEachBit(bits, list, VK_bitfield_toggle);
}

int VK_bitfield_is_any_set(const unsigned char* bits, const int* list) {
    if (!bits || !list)
        return 0;
    for (; *list; ++list)
        if (VK_bitfield_is_set(bits, *list))
            return 1;
    return 0;
}

int VK_bitfield_is_clear(const unsigned char* bits, int nbytes) {
    if (!bits)
        return 1;
    for (int i = 0; i < nbytes; ++i)
        if (bits[i])
            return 0;
    return 1;
}

void VK_bitfield_set_from_int(unsigned char* bits, int value) {
    // A negative value never shifts down to zero: it would write on past any buffer, so it is
    // refused and the buffer left as it was.
    if (!bits || value < 0)
        return;
    do {
        *bits++ = static_cast<unsigned char>(value & 0xFF);
        value >>= 8;
    } while (value != 0);
}

} // extern "C"
