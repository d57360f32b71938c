/* Bump-allocation pools: many small pieces carved one after another from fixed-size blocks
   and released only all together with VK_pool_free. Meant for short-lived scratch data whose
   pieces die at the same time. Pieces are not aligned beyond what their sizes give. */
#ifndef OBRIX_UTIL_VK_POOL_H
#define OBRIX_UTIL_VK_POOL_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/util/vk_list.h"

OBRIX_EXTERN_C_BEGIN

/** A pool record from `malloc`; release it with `VK_pool_free`. */
typedef struct VK_Pool {
    VK_List* blocks; /**< the pool's blocks, the current one first */
    int used;        /**< bytes already handed out from the current block */
    int block_size;  /**< bytes in every block */
} VK_Pool;

/// A pool with the given block size and no block yet; null when it cannot be allocated.
OBRIX_API VK_Pool* VK_pool_new(int block_size);
/// `nbytes` bytes right after the previous piece of the current block, or at the start of a
/// new block (from `malloc`) when the current one has no room; the rest of the old block is
/// abandoned. Null when the pool is null, `nbytes` is negative or exceeds the block size, or a
/// new block cannot be allocated. No alignment is added. O(1).
OBRIX_API void* VK_pool_alloc(VK_Pool* pool, int nbytes);
/// Frees every block and the record and sets `*pool` to null; null or already null is
/// ignored. Every piece handed out becomes invalid. O(blocks).
OBRIX_API void VK_pool_free(VK_Pool** pool);

OBRIX_EXTERN_C_END

#endif
