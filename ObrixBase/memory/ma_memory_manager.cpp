#include "ObrixBase/memory/ma_memory_manager.h"

#include <cstddef>
#include <cstdlib>

namespace {

// Each block carries its requested size in a header one max_align_t wide, so that the user
// part keeps malloc's alignment and MA_free can take the size off the live count.
constexpr size_t kHeader = alignof(std::max_align_t) > sizeof(size_t) ? alignof(std::max_align_t)
                                                                      : sizeof(size_t);

// Process-wide and unguarded, like the rest of the library's state: the modelling thread
// is the only caller.
MA_Stats stats{};

} // namespace

extern "C" {

void* MA_malloc(size_t size, int, const char*, ...) {
    if (size > static_cast<size_t>(-1) - kHeader)
        return nullptr;
    auto* raw = static_cast<unsigned char*>(std::malloc(size + kHeader));
    if (!raw)
        return nullptr;
    *reinterpret_cast<size_t*>(raw) = size;
    stats.live_bytes += size;
    stats.live_blocks += 1;
    stats.total_blocks += 1;
    if (stats.live_bytes > stats.peak_bytes)
        stats.peak_bytes = stats.live_bytes;
    if (stats.live_blocks > stats.peak_blocks)
        stats.peak_blocks = stats.live_blocks;
    return raw + kHeader;
}

void MA_free(void* block) {
    if (!block)
        return;
    auto* raw = static_cast<unsigned char*>(block) - kHeader;
    stats.live_bytes -= *reinterpret_cast<size_t*>(raw);
    stats.live_blocks -= 1;
    std::free(raw);
}

void MA_get_stats(MA_Stats* out) {
    if (out)
        *out = stats;
}

void MA_reset_peak(void) {
    stats.peak_bytes = stats.live_bytes;
    stats.peak_blocks = stats.live_blocks;
}

} // extern "C"
