/* The accounted allocator: MA_malloc, MA_calloc, MA_realloc, MA_strdup and MA_free behave
   like their C runtime namesakes and count what is live, overall and per call site (file and
   line), so that a leak can be traced to the line that allocated it. MA_report prints the live
   blocks by site through the debug printer.

   Heap rule. The records that the library allocates and frees on its own account come from
   this allocator and are counted: debug file entries and their names, item-list nodes and
   items (AN_*, An_*) and the sort scratch of An_sort_item_list. Everything else the library
   allocates comes from the C heap and is not counted: structure records and their nodes
   (DS_create_type and the four kinds), registration records, VK_List cells, VK_ll copies,
   arrays, pools, and strings handed to the caller to free. An accounted block carries no
   header, so it is an ordinary C heap block: free() releases it (VK_list_delete does so with
   item-list nodes) and MA_free releases blocks from malloc. A block released with free()
   stays counted as live until the C heap hands its address out again; MA_forget takes a block
   out of the accounting first when the counts must stay exact.

   Double and foreign frees. Every block is recorded in a side table (an open-addressed hash
   set keyed by address, holding the block's size and site), so MA_free knows its own blocks
   without touching them. A release marks the block's entry rather than removing it, and the
   entry stays until the C heap hands the address out again or the table is cleared out of
   released entries (when it is a quarter full); a clear-out keeps up to 512 of the addresses
   it drops (one per hash slot, a newer release evicting an older one). A pointer found
   released is a double free: reported with rptError, counted and not released again. Any
   other pointer is a foreign block: counted, reported with rptDebug at level 1 and released
   with free (so a double free whose address has been forgotten reaches the C runtime, which
   may stop the process). When the C heap hands a released address to a plain malloc caller
   who gives it to MA_free, that block is taken for a double free and kept.

   The table holds 16 bytes per slot and is kept at most a quarter full: 64 to 192 bytes per
   live block, off the blocks themselves. Process-wide and unguarded, like the rest of the
   library: call it from one thread. Setting the environment variable OBRIX_MA_REPORT to
   anything but "" or "0" prints MA_report when the process exits. */
#ifndef OBRIX_MEMORY_MA_MEMORY_MANAGER_H
#define OBRIX_MEMORY_MA_MEMORY_MANAGER_H

#include <stddef.h>
#include <stdint.h>

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/** Counts kept by the accounted allocator since the process started. Sizes are the sizes
    asked for, not what the C heap rounds them up to. */
typedef struct MA_Stats {
    size_t live_bytes;    /**< bytes of blocks not yet released */
    size_t live_blocks;   /**< blocks not yet released */
    size_t peak_bytes;    /**< the highest live_bytes seen */
    size_t peak_blocks;   /**< the highest live_blocks seen */
    size_t total_blocks;  /**< every block ever handed out */
    size_t double_frees;  /**< releases of a block released already (left alone) */
    size_t foreign_frees; /**< MA_free of blocks that did not come from here (released) */
} MA_Stats;

/** The counts of one call site: every block allocated from the same file name and line. */
typedef struct MA_Site_stats {
    const char* file; /**< the file name given by the caller; "(unknown)" for null */
    /** The line given by the caller. */
    int line;
    /** Bytes of this site's blocks not yet freed. */
    size_t live_bytes;
    /** Blocks of this site not yet freed. */
    size_t live_blocks;
    size_t peak_bytes;   /**< the site's highest live_bytes */
    size_t total_blocks; /**< every block the site was ever handed */
} MA_Site_stats;

/** Allocates `size` bytes aligned for any type, like malloc; null when out of memory.
    `line` and `file` name the caller's source position (pass __LINE__, __FILE__); further
    arguments are accepted and ignored. A request of 0 bytes returns a unique block; one of
    2^47 bytes or more fails at once. Cost: a C heap allocation plus a few nanoseconds. */
OBRIX_API void* MA_malloc(size_t size, int line, const char* file, ...);

/** `count` zeroed elements of `size` bytes, like calloc; null when out of memory or when
    count * size reaches 2^47. */
OBRIX_API void* MA_calloc(size_t count, size_t size, int line, const char* file);

/** Resizes `block` like realloc: a null `block` is MA_malloc(size); a size of 0 gives a unique
    0-byte block (the old one is released). On failure null is returned and `block` is
    untouched and still counted. The block is counted at this call's site afterwards. A block
    that did not come from here is resized and counted from now on; one released already is a
    double free: reported, counted, and null is returned. */
OBRIX_API void* MA_realloc(void* block, size_t size, int line, const char* file);

/** A counted copy of the string `text`; null for a null `text` or when out of memory. */
OBRIX_API char* MA_strdup(const char* text, int line, const char* file);

/** Releases `block`; a null pointer is ignored. Blocks from malloc are released too (and
    counted as foreign); a block released already is reported and left alone. */
OBRIX_API void MA_free(void* block);

/** Takes `block` out of the accounting without releasing it: from then on it is a plain C
    heap block for free(). Returns 1 when the block was counted here, 0 otherwise (null too). */
OBRIX_API int MA_forget(void* block);

/** Copies the current counts to `*stats`; a null `stats` is ignored. */
OBRIX_API void MA_get_stats(MA_Stats* stats);

/** Sets the peak counts (overall and per site) to the live counts, so that a caller can
    measure one phase. */
OBRIX_API void MA_reset_peak(void);

/** The counts of every call site, sites with the same file name and line merged, sorted by
    live bytes (largest first), then file name and line. Writes at most `capacity` entries to
    `sites` (null allowed with capacity 0) and returns how many sites there are. */
OBRIX_API size_t MA_get_site_stats(MA_Site_stats* sites, size_t capacity);

/** Prints the totals and every site that holds live blocks, through the debug printer
    (AA_debug_print), one line each:
        "Accounted memory: 96 bytes live in 2 blocks (peak 4192 bytes in 5 blocks)\n"
        "   anim/an_anim_list.cpp:163: 64 bytes in 2 blocks (peak 128 bytes, 4 allocated)\n"
    followed by "Double frees: 1, foreign frees: 0\n" when either count is non-zero. Returns
    the number of live blocks. */
OBRIX_API size_t MA_report(void);

/* ---- mapped scratch memory: large temporary buffers mapped from the system, outside the
   heap. Each region is zero-filled, page-aligned, released whole and counted apart from the
   heap. ---- */

/** Where a mapped region's pages live. */
typedef enum MA_Mmap_backing {
    MA_MMAP_ANONYMOUS = 0, /**< the system's swap-backed memory */
    MA_MMAP_TEMP_FILE = 1  /**< a file in the system's temporary directory, deleted on release */
} MA_Mmap_backing;

/** Counts of the mapped regions. */
typedef struct MA_Mmap_stats {
    size_t live_bytes;    /**< bytes of regions not yet released */
    size_t live_regions;  /**< regions not yet released */
    size_t peak_bytes;    /**< the highest live_bytes seen */
    size_t total_regions; /**< every region ever mapped */
} MA_Mmap_stats;

/** A new region of `size` bytes, or null: for a size of 0, an unknown backing, or when the
    system refuses (the reason is reported with rptError). */
OBRIX_API void* Ma_allocMmapMemory(size_t size, MA_Mmap_backing backing);

/** Unmaps a region from Ma_allocMmapMemory (and deletes its file); returns 1, or 0 for null or
    a pointer that is not the start of a live region (nothing happens then). */
OBRIX_API int Ma_freeMmapMemory(void* region);

/** The size a region was asked for; 0 for null or a pointer that is not a live region. */
OBRIX_API size_t Ma_mmapMemorySize(const void* region);

/** Copies the mapped regions' counts to `*stats`; a null `stats` is ignored. */
OBRIX_API void Ma_getMmapStats(MA_Mmap_stats* stats);

/* ---- what the system has: thin readings of the platform's figures ---- */

/** The machine's memory, in bytes. Virtual memory is this process's address space (Windows:
    its user part; elsewhere its address-space limit, or the architecture's user space when
    unlimited) and what of it the process has not reserved. */
typedef struct MA_System_memory {
    /** Installed memory the system uses. */
    uint64_t physical_total;
    /** Memory available to new work without swapping. */
    uint64_t physical_available;
    /** This process's address space (see above). */
    uint64_t virtual_total;
    /** The part of virtual_total the process has not reserved. */
    uint64_t virtual_available;
    /** Swap space (the page file beyond memory on Windows). */
    uint64_t swap_total;
    /** The part of swap_total not in use. */
    uint64_t swap_free;
} MA_System_memory;

/** Fills `*memory`; returns 1, or 0 (and reports the reason with rptError) when the system
    does not answer. A null `memory` gives 0. */
OBRIX_API int Ma_getSystemMemory(MA_System_memory* memory);

/** The free and total bytes of the disk that holds `path`; returns 1, or 0 (reported with
    rptError) for a path the system cannot query (it must exist). A null path gives 0; either
    output may be null when not wanted. */
OBRIX_API int Ma_getDiskSpace(const char* path, uint64_t* free_bytes, uint64_t* total_bytes);

OBRIX_EXTERN_C_END

#endif
