// MA_report prints the accounting through the debug printer. It sits with diagnostics rather
// than beside the allocator because the printer keeps its files in structures whose records
// come from the allocator: memory stays below diagnostics, and the report reads it from above.
#include "ObrixBase/memory/ma_memory_manager.h"

#include <algorithm>
#include <vector>

#include "ObrixBase/util/aa_debug.h"

extern "C" {

size_t MA_report(void) {
    // As MA_get_site_stats: nothing is printed when the site list cannot be had.
    try {
        std::vector<MA_Site_stats> all(MA_get_site_stats(nullptr, 0));
        all.resize(MA_get_site_stats(all.data(), all.size()));
        MA_Stats now{};
        MA_get_stats(&now);
        // %llu, not %zu: the Windows runtime's printf checks do not know 'z'.
        auto u = [](size_t n) { return static_cast<unsigned long long>(n); };
        AA_indent();
        AA_debug_print("Accounted memory: %llu bytes live in %llu blocks (peak %llu bytes in %llu "
                       "blocks)\n",
                       u(now.live_bytes), u(now.live_blocks), u(now.peak_bytes),
                       u(now.peak_blocks));
        for (const MA_Site_stats& site : all) {
            if (!site.live_blocks)
                continue;
            AA_indent();
            AA_debug_print(
                "   %s:%d: %llu bytes in %llu blocks (peak %llu bytes, %llu allocated)\n",
                site.file, site.line, u(site.live_bytes), u(site.live_blocks), u(site.peak_bytes),
                u(site.total_blocks));
        }
        if (now.double_frees || now.foreign_frees) {
            AA_indent();
            AA_debug_print("Double frees: %llu, foreign frees: %llu\n", u(now.double_frees),
                           u(now.foreign_frees));
        }
        return now.live_blocks;
    } catch (...) {
        return 0;
    }
}

} // extern "C"
