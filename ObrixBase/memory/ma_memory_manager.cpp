#include "ObrixBase/memory/ma_memory_manager.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "Base/qvOS/Env.h"
#include "Base/rpt/rpt.h"
// The debug printer allocates its file entries here, and the report prints through it: the
// two sit together at the bottom of the library.

namespace {

// All state is plain data reached through pointers that are never freed: MA_free may be
// called from other libraries' static destructors, after this file's own would have run.

// ---- call sites ----------------------------------------------------------------------------

struct Site {
    const char* file;
    int line;
    size_t liveBytes, liveBlocks, peakBytes, totalBlocks;
};

// Site 0 takes every allocation once the 16-bit site numbers run out.
constexpr std::uint32_t kMaxSites = 0xFFFF;
const char kOverflowFile[] = "(other sites)";
const char kUnknownFile[] = "(unknown)";

Site* sites = nullptr; // sites[0 .. siteCount)
std::uint32_t siteCount = 0;
std::uint32_t siteCapacity = 0;
std::uint32_t* siteIndex = nullptr; // open-addressed (file, line) -> site number + 1
std::uint32_t siteIndexMask = 0;

// Most loops allocate from one line over and over: the last site answers without hashing.
const char* lastFile = nullptr;
int lastLine = 0;
std::uint32_t lastSite = 0;

std::uint64_t mix(std::uint64_t x) {
    x *= 0x9E3779B97F4A7C15ull;
    return x ^ (x >> 29);
}

std::uint64_t siteHash(const char* file, int line) {
    return mix(reinterpret_cast<std::uintptr_t>(file) ^
               (static_cast<std::uint64_t>(static_cast<unsigned>(line)) << 40));
}

bool growSiteIndex() {
    const std::uint32_t capacity = siteIndexMask ? (siteIndexMask + 1) * 2 : 256;
    auto* grown = static_cast<std::uint32_t*>(std::calloc(capacity, sizeof(std::uint32_t)));
    if (!grown)
        return false;
    for (std::uint32_t s = 1; s < siteCount; ++s) {
        std::uint64_t i = siteHash(sites[s].file, sites[s].line) & (capacity - 1);
        while (grown[i])
            i = (i + 1) & (capacity - 1);
        grown[i] = s + 1;
    }
    std::free(siteIndex);
    siteIndex = grown;
    siteIndexMask = capacity - 1;
    return true;
}

// The site of (file, line); a new one the first time. Falls back to site 0 when the sites
// cannot grow, so that allocation never fails for the accounting's sake.
std::uint32_t slowSiteFor(const char* file, int line) {
    if (!sites) {
        sites = static_cast<Site*>(std::calloc(64, sizeof(Site)));
        if (!sites)
            return 0;
        siteCapacity = 64;
        sites[0].file = kOverflowFile;
        siteCount = 1;
    }
    if (siteIndexMask) {
        for (std::uint64_t i = siteHash(file, line) & siteIndexMask; siteIndex[i];
             i = (i + 1) & siteIndexMask) {
            const Site& s = sites[siteIndex[i] - 1];
            if (s.file == file && s.line == line)
                return siteIndex[i] - 1;
        }
    }
    if (siteCount >= kMaxSites)
        return 0;
    if ((siteCount + 1) * 2 > siteIndexMask + 1 && !growSiteIndex())
        return 0;
    if (siteCount == siteCapacity) {
        auto* grown = static_cast<Site*>(std::realloc(sites, sizeof(Site) * siteCapacity * 2));
        if (!grown)
            return 0;
        sites = grown;
        siteCapacity *= 2;
    }
    const std::uint32_t number = siteCount++;
    sites[number] = Site{file, line, 0, 0, 0, 0};
    std::uint64_t i = siteHash(file, line) & siteIndexMask;
    while (siteIndex[i])
        i = (i + 1) & siteIndexMask;
    siteIndex[i] = number + 1;
    return number;
}

inline std::uint32_t siteFor(const char* file, int line) {
    if (!file)
        file = kUnknownFile;
    if (file == lastFile && line == lastLine)
        return lastSite;
    lastSite = slowSiteFor(file, line);
    lastFile = file;
    lastLine = line;
    return lastSite;
}

// ---- blocks ---------------------------------------------------------------------------------

// A block the allocator knows: its address, and its size and site packed as size << 16 | site,
// with the top bit set once the block is released. Sizes fit in 47 bits on every 64-bit system
// (and trivially on 32-bit ones).
struct Slot {
    std::uintptr_t key; // 0: empty
    std::uint64_t sizeAndSite;
};

constexpr std::uint64_t kReleased = std::uint64_t{1} << 63;

// Larger requests fail at once: no system gives a process 128 TiB, and the packing needs it.
constexpr std::size_t kMaxRequest = static_cast<std::size_t>((std::uint64_t{1} << 47) - 1);

// The table of blocks: open addressing with linear probing, its capacity a power of two, a
// block's home slot the top bits of its hash. It holds the live blocks and the released ones
// until it is next cleared out. A release only marks its entry: the C heap hands the same
// addresses out again soon, and the new block takes the old entry's place, so neither a
// release nor an allocation moves other entries. The table is kept at most a quarter full:
// a block is then nearly always in its home slot, and probe loops that end at once are what
// keep a pair within a few nanoseconds of the C heap's own.
constexpr std::size_t kLoadDivisor = 4;
Slot* slots = nullptr;
std::size_t slotMask = 0;
unsigned slotShift = 63;   // 64 - log2(capacity) once the table exists
std::size_t slotsUsed = 0; // live and released entries

MA_Stats stats{};

// Multiplicative hashing of the address without its alignment bits: the product's top bits
// depend on every address bit, so blocks that lie side by side in the heap spread over the
// table.
inline std::uint64_t hashOf(std::uintptr_t key) {
    return (static_cast<std::uint64_t>(key) >> 4) * 0x9E3779B97F4A7C15ull;
}
inline std::size_t homeOf(std::uint64_t hash) {
    return static_cast<std::size_t>(hash >> slotShift);
}

inline std::size_t sizeOf(std::uint64_t packed) {
    return static_cast<std::size_t>((packed & ~kReleased) >> 16);
}
inline std::uint32_t siteOf(std::uint64_t packed) {
    return static_cast<std::uint32_t>(packed & 0xFFFF);
}
inline bool isLive(const Slot& slot) {
    return !(slot.sizeAndSite & kReleased);
}

// Released addresses that a clear-out took from the table, direct-mapped, so that a double
// free soon after one is still recognised. An address handed out again needs no clearing
// here: the table is consulted first.
constexpr std::size_t kReleasedCount = 512;
std::uintptr_t releasedKeys[kReleasedCount];
std::uint16_t releasedSites[kReleasedCount];

inline std::size_t releasedIndex(std::uint64_t hash) {
    return static_cast<std::size_t>(hash >> 55); // the top 9 bits
}

void atExitReport() {
    MA_report();
}

// Rebuilds the table without its released entries (they move to the released addresses),
// sized so that the live entries take at most two thirds of the allowance: the next clear-out
// then waits until a twelfth of the slots have been newly taken, which pays for visiting them
// all. The table shrinks again when most of its blocks have gone.
bool clearOutSlots() {
    const std::size_t oldCapacity = slotMask ? slotMask + 1 : 0;
    std::size_t live = 0;
    for (std::size_t i = 0; i < oldCapacity; ++i)
        live += slots[i].key && isLive(slots[i]);
    std::size_t capacity = 1024;
    while ((live + 1) * kLoadDivisor * 3 > capacity * 2)
        capacity *= 2;
    auto* fresh = static_cast<Slot*>(std::calloc(capacity, sizeof(Slot)));
    if (!fresh)
        return false;
    Slot* old = slots;
    slots = fresh;
    slotMask = capacity - 1;
    slotShift = 64;
    for (std::size_t c = capacity; c > 1; c >>= 1)
        --slotShift;
    slotsUsed = live;
    for (std::size_t i = 0; i < oldCapacity; ++i) {
        const Slot& entry = old[i];
        if (!entry.key)
            continue;
        const std::uint64_t hash = hashOf(entry.key);
        if (!isLive(entry)) {
            releasedKeys[releasedIndex(hash)] = entry.key;
            releasedSites[releasedIndex(hash)] =
                static_cast<std::uint16_t>(siteOf(entry.sizeAndSite));
            continue;
        }
        std::size_t j = homeOf(hash);
        while (slots[j].key)
            j = (j + 1) & slotMask;
        slots[j] = entry;
    }
    std::free(old);
    if (!oldCapacity) {
        // The first use of the allocator decides on the exit report.
        qvString::CString want;
        if (qvOS::GetEnv("OBRIX_MA_REPORT", want) && !want.empty() && want != "0")
            std::atexit(atExitReport);
    }
    return true;
}

// Room for one more entry. Made before the C heap is asked, so that a block once allocated
// can always be recorded; false when the allocator's own records cannot be had (the caller's
// allocation then fails).
inline bool reserveSlot() {
    return sites && ((slotsUsed + 1) * kLoadDivisor <= slotMask + 1 || clearOutSlots());
}

inline void countRelease(std::uint64_t packed) {
    const std::size_t size = sizeOf(packed);
    Site& site = sites[siteOf(packed)];
    site.liveBytes -= size;
    site.liveBlocks -= 1;
    stats.live_bytes -= size;
    stats.live_blocks -= 1;
}

// The first slot of `key`'s probe run that is empty or holds `key`.
inline std::size_t probe(std::uintptr_t key) {
    std::size_t i = homeOf(hashOf(key));
    while (slots[i].key && slots[i].key != key)
        i = (i + 1) & slotMask;
    return i;
}

// Writes a block's entry over any entry of the same address: a released one, or a live one
// whose block was released behind the allocator's back (with free), which is retired now.
void enter(const Slot& entry) {
    Slot& slot = slots[probe(entry.key)];
    if (!slot.key)
        ++slotsUsed;
    else if (isLive(slot))
        countRelease(slot.sizeAndSite);
    slot = entry;
}

// Enters and counts a block the C heap has just handed out.
inline void record(void* block, std::size_t size, std::uint32_t siteNumber) {
    enter(Slot{reinterpret_cast<std::uintptr_t>(block),
               (static_cast<std::uint64_t>(size) << 16) | siteNumber});

    Site& site = sites[siteNumber];
    site.liveBytes += size;
    site.liveBlocks += 1;
    site.totalBlocks += 1;
    if (site.liveBytes > site.peakBytes)
        site.peakBytes = site.liveBytes;
    stats.live_bytes += size;
    stats.live_blocks += 1;
    stats.total_blocks += 1;
    if (stats.live_bytes > stats.peak_bytes)
        stats.peak_bytes = stats.live_bytes;
    if (stats.live_blocks > stats.peak_blocks)
        stats.peak_blocks = stats.live_blocks;
}

// The entry of `block`, live or released, or null.
Slot* find(const void* block) {
    if (!slots)
        return nullptr;
    Slot& slot = slots[probe(reinterpret_cast<std::uintptr_t>(block))];
    return slot.key ? &slot : nullptr;
}

// Uncounts a live block; its entry stays, marked, to recognise a second release.
inline void release(Slot& slot) {
    countRelease(slot.sizeAndSite);
    slot.sizeAndSite |= kReleased;
}

// Removes an entry by shifting its successors back (linear probing without tombstones).
void erase(Slot* slot) {
    std::size_t hole = static_cast<std::size_t>(slot - slots);
    for (std::size_t j = (hole + 1) & slotMask; slots[j].key; j = (j + 1) & slotMask) {
        // The entry at j may fill the hole when the hole lies on its probe run, between its
        // home and j.
        const std::size_t home = homeOf(hashOf(slots[j].key));
        if (((j - home) & slotMask) >= ((j - hole) & slotMask)) {
            slots[hole] = slots[j];
            hole = j;
        }
    }
    slots[hole].key = 0;
    --slotsUsed;
}

// A pointer that is not a live block here (`entry` is its released entry, or null): a double
// free when it was released lately, else foreign.
bool isDoubleFree(const void* block, const Slot* entry, const char* what) {
    const auto key = reinterpret_cast<std::uintptr_t>(block);
    std::uint32_t siteNumber;
    if (entry) {
        siteNumber = siteOf(entry->sizeAndSite);
    } else {
        const std::size_t r = releasedIndex(hashOf(key));
        if (releasedKeys[r] != key)
            return false;
        siteNumber = releasedSites[r];
    }
    ++stats.double_frees;
    const Site& site = sites[siteNumber];
    rptError("%s: block %p (from %s:%d) was released already; it is left alone\n", what, block,
             site.file, site.line);
    return true;
}

} // namespace

extern "C" {

void* MA_malloc(size_t size, int line, const char* file, ...) {
    if (size > kMaxRequest)
        return nullptr;
    const std::uint32_t site = siteFor(file, line);
    if (!reserveSlot())
        return nullptr;
    void* block = std::malloc(size ? size : 1);
    if (block)
        record(block, size, site);
    return block;
}

void* MA_calloc(size_t count, size_t size, int line, const char* file) {
    if (size && count > kMaxRequest / size)
        return nullptr;
    const std::uint32_t site = siteFor(file, line);
    if (!reserveSlot())
        return nullptr;
    void* block = count && size ? std::calloc(count, size) : std::calloc(1, 1);
    if (block)
        record(block, count * size, site);
    return block;
}

void* MA_realloc(void* block, size_t size, int line, const char* file) {
    if (!block)
        return MA_malloc(size, line, file);
    if (size > kMaxRequest)
        return nullptr;
    const std::uint32_t site = siteFor(file, line);
    if (!reserveSlot())
        return nullptr;
    Slot* slot = find(block);
    const bool ours = slot && isLive(*slot);
    if (!ours && isDoubleFree(block, slot, "MA_realloc"))
        return nullptr;
    void* moved = std::realloc(block, size ? size : 1);
    if (!moved)
        return nullptr;
    // realloc has not touched the table, so the slot found above is still the block's.
    if (ours)
        release(*slot);
    record(moved, size, site);
    return moved;
}

char* MA_strdup(const char* text, int line, const char* file) {
    if (!text)
        return nullptr;
    const size_t length = std::strlen(text) + 1;
    auto* copy = static_cast<char*>(MA_malloc(length, line, file));
    if (copy)
        std::memcpy(copy, text, length);
    return copy;
}

void MA_free(void* block) {
    if (!block)
        return;
#if defined(__GNUC__) || defined(__clang__)
    // The C heap reads the block's size word in front of it when it releases the block. With
    // many live blocks both that word and the block's table entry are usually out of the cache:
    // asking for the word first lets the two loads overlap instead of waiting one after the
    // other (about a sixth of the pair's time with 100,000 live blocks). Never faults, even
    // for a pointer that is no block at all.
    __builtin_prefetch(static_cast<char*>(block) - 16);
#endif
    Slot* slot = find(block);
    if (slot && isLive(*slot)) {
        release(*slot);
        std::free(block);
        return;
    }
    if (isDoubleFree(block, slot, "MA_free"))
        return;
    ++stats.foreign_frees;
    rptDebug(1, "MA_free: block %p did not come from the accounted allocator\n", block);
    std::free(block);
}

int MA_forget(void* block) {
    Slot* slot = find(block);
    if (!slot || !isLive(*slot))
        return 0;
    countRelease(slot->sizeAndSite);
    erase(slot);
    return 1;
}

void MA_get_stats(MA_Stats* out) {
    if (out)
        *out = stats;
}

void MA_reset_peak(void) {
    stats.peak_bytes = stats.live_bytes;
    stats.peak_blocks = stats.live_blocks;
    for (std::uint32_t s = 0; s < siteCount; ++s)
        sites[s].peakBytes = sites[s].liveBytes;
}

size_t MA_get_site_stats(MA_Site_stats* out, size_t capacity) {
    // The C interface never throws: running out of memory for the scratch lists gives 0.
    try {
        // The same file name can reach here through several pointers (one per translation unit
        // that names it), so sites are merged by the name's text.
        std::vector<MA_Site_stats> merged;
        merged.reserve(siteCount);
        for (std::uint32_t s = 0; s < siteCount; ++s) {
            const Site& site = sites[s];
            if (!site.totalBlocks)
                continue;
            merged.push_back(MA_Site_stats{site.file, site.line, site.liveBytes, site.liveBlocks,
                                           site.peakBytes, site.totalBlocks});
        }
        auto byPlace = [](const MA_Site_stats& a, const MA_Site_stats& b) {
            const int order = std::strcmp(a.file, b.file);
            return order != 0 ? order < 0 : a.line < b.line;
        };
        std::sort(merged.begin(), merged.end(), byPlace);
        std::size_t n = 0;
        for (std::size_t i = 0; i < merged.size(); ++i) {
            if (n && !byPlace(merged[n - 1], merged[i])) {
                MA_Site_stats& into = merged[n - 1];
                into.live_bytes += merged[i].live_bytes;
                into.live_blocks += merged[i].live_blocks;
                into.peak_bytes += merged[i].peak_bytes; // peaks of the parts may not coincide
                into.total_blocks += merged[i].total_blocks;
            } else {
                merged[n++] = merged[i];
            }
        }
        merged.resize(n);
        std::stable_sort(merged.begin(), merged.end(),
                         [](const auto& a, const auto& b) { return a.live_bytes > b.live_bytes; });
        if (out)
            std::copy_n(merged.begin(), std::min(capacity, merged.size()), out);
        return merged.size();
    } catch (...) {
        return 0;
    }
}

} // extern "C"
