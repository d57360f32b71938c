/* Bitfields over caller byte buffers, addressed by 1-based bit numbers: bit n lives in byte
   (n - 1) / 8 under the mask 1 << ((n - 1) % 8), so bit 1 is the lowest bit of byte 0 and
   bit 9 the lowest bit of byte 1. Lists of bit numbers are int arrays ended by 0. The caller
   sizes the buffer: nothing is bounds-checked. */
#ifndef OBRIX_UTIL_VK_BITFIELD_H
#define OBRIX_UTIL_VK_BITFIELD_H

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/* A null buffer or list, or a bit number below 1, is ignored by every routine (queries then
   answer 0, except VK_bitfield_is_clear which answers 1). */

/// Sets bit `n`.
OBRIX_API void VK_bitfield_set(unsigned char* bits, int n);
/// Clears bit `n`.
OBRIX_API void VK_bitfield_unset(unsigned char* bits, int n);
/// Flips bit `n`.
OBRIX_API void VK_bitfield_toggle(unsigned char* bits, int n);
/// The byte masked to bit `n`: non-zero when set, and not normalised to 1 (bit 8 gives 128).
OBRIX_API int VK_bitfield_is_set(const unsigned char* bits, int n);
/// Sets every bit of the 0-ended `list`.
OBRIX_API void VK_bitfield_set_multiple(unsigned char* bits, const int* list);
/// Clears every bit of the 0-ended `list`.
OBRIX_API void VK_bitfield_unset_multiple(unsigned char* bits, const int* list);
/// Flips every bit of the 0-ended `list` (a bit named twice ends as it was).
OBRIX_API void VK_bitfield_toggle_multiple(unsigned char* bits, const int* list);
/// 1 when any bit of the 0-ended `list` is set, else 0 (an empty list gives 0).
OBRIX_API int VK_bitfield_is_any_set(const unsigned char* bits, const int* list);
/// 1 when the first `nbytes` bytes (bytes, not bits) are all zero; 1 for `nbytes < 1`.
OBRIX_API int VK_bitfield_is_clear(const unsigned char* bits, int nbytes);
/// Stores `value` little-endian from byte 0, touching only the bytes it needs (at least one:
/// 0 writes one zero byte, 256 writes 0x00 0x01); the bytes above are left as they were.
/// Only non-negative values are stored; a negative value leaves the buffer untouched.
OBRIX_API void VK_bitfield_set_from_int(unsigned char* bits, int value);

OBRIX_EXTERN_C_END

#endif
