/* The accounted allocator: MA_malloc and MA_free behave like malloc and free and keep live and
   peak counts of bytes and blocks, so that a caller can see what the library holds. Blocks
   from MA_malloc must be released with MA_free, never with free. */
#ifndef OBRIX_MEMORY_MA_MEMORY_MANAGER_H
#define OBRIX_MEMORY_MA_MEMORY_MANAGER_H

#include <stddef.h>

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/** Counts kept by the accounted allocator since the process started. */
typedef struct MA_Stats {
    size_t live_bytes;   /**< bytes requested by blocks not yet freed */
    size_t live_blocks;  /**< blocks not yet freed */
    size_t peak_bytes;   /**< the highest live_bytes seen */
    size_t peak_blocks;  /**< the highest live_blocks seen */
    size_t total_blocks; /**< every block ever handed out */
} MA_Stats;

/** Allocates `size` bytes aligned for any type, like malloc; null when out of memory.
    `line` and `file` name the caller's source position; further arguments are accepted and
    ignored. A request of 0 bytes returns a unique block that MA_free accepts. */
OBRIX_API void* MA_malloc(size_t size, int line, const char* file, ...);

/** Frees a block from MA_malloc; a null pointer is ignored. */
OBRIX_API void MA_free(void* block);

/** Copies the current counts to `*stats`; a null `stats` is ignored. */
OBRIX_API void MA_get_stats(MA_Stats* stats);

/** Sets the peak counts to the live counts, so that a caller can measure one phase. */
OBRIX_API void MA_reset_peak(void);

OBRIX_EXTERN_C_END

#endif
