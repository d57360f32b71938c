/* Growable arrays of fixed-size elements, and the int/pointer conversions that let small
   integers ride in pointer-typed containers. An array grows on demand by the caller's
   increment and never shrinks; elements are addressed by 0-based index. */
#ifndef OBRIX_UTIL_VK_ARRAY_H
#define OBRIX_UTIL_VK_ARRAY_H

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/** An array record from `malloc`; release it with `VK_array_free`. */
typedef struct VK_Array {
    int count;        /**< element slots allocated */
    int element_size; /**< bytes per element */
    int increment;    /**< extra slots added on every growth */
    void* data;       /**< count * element_size bytes, null until the first growth */
} VK_Array;

/// A new array with no slots, grown to `initial_count` slots (plus the increment) when that is
/// non-zero; new slots are zero-filled. Null when the record cannot be allocated.
OBRIX_API VK_Array* VK_array_new(int element_size, int initial_count, int increment);
/// Grows the array to `n + increment` slots when `n` exceeds `count`, keeping the old
/// elements and zero-filling the new slots; never shrinks. A null array, a negative size or a
/// failed allocation leaves the array as it was. O(count).
OBRIX_API void VK_array_size(VK_Array* array, int n);
/// The address of element `index`, or null when the array is null or `index` is outside
/// 0..count-1. O(1).
OBRIX_API void* VK_array_get(VK_Array* array, int index);
/// Copies `element_size` bytes from `element` into slot `index`, first growing the array with
/// `VK_array_size(array, index)` when `index >= count`. The growth target is `index`, not
/// `index + 1`, so the new count is `index + increment`: with increment 0 the slot is still
/// missing after the growth and nothing is written (size the array first). A null array or
/// element, or a negative index, does nothing. O(1), O(count) when growing.
OBRIX_API void VK_array_put(VK_Array* array, int index, void* element);
/// Frees the data and the record and sets `*array` to null; null or already null is ignored.
OBRIX_API void VK_array_free(VK_Array** array);

/// A pointer whose low 32 bits are `value` and whose high bits are zero (zero-extended also
/// for negative values, so VK_int2ptr(-1) is 0x00000000FFFFFFFF).
OBRIX_API void* VK_int2ptr(int value);
/// The low 32 bits of `pointer` as an int; undoes `VK_int2ptr`.
OBRIX_API int VK_ptr2int(void* pointer);

OBRIX_EXTERN_C_END

#endif
