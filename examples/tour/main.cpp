// A short walk through the library: each chapter shows one subsystem at work.
#include <cstdio>
#include <cstring>

#include "ObrixBase/ObrixBase.h"
#include "examples/tour/tour.h"

void tourHeading(const char* title) {
    std::printf("\n== %s ==\n", title);
    // Chapters start helper programs that write to the same terminal or file: what the tour
    // printed so far goes out first, so the two stay in order.
    std::fflush(stdout);
}

int main(int argc, char** argv) {
    // The file cache chapter starts the tour a second time as the other application process.
    if (argc == 4 && std::strcmp(argv[1], "--filecache-reader") == 0)
        return tourFileCacheReader(argv[2], argv[3]);
    std::printf("ObrixBase tour\n");
    tourDiagnostics();
    tourContainers();
    tourGeometry();
    tourNumerics();
    tourFactorisations();
    tourUndo();
    tourMemory();
    tourTrace();
    tourFileCache();
    tourWarnings();
    tourFiles();
    tourDebugDraw();

    // Only blocks taken through MA_malloc and its family are counted: the tour's own and
    // those of the library's file names and item lists. The numeric and container classes
    // take theirs from the C heap, uncounted.
    MA_Stats stats;
    MA_get_stats(&stats);
    std::printf("\nMA_malloc blocks: %zu handed out, %zu still live at the end (%zu bytes); "
                "at most %zu bytes at once\n",
                stats.total_blocks, stats.live_blocks, stats.live_bytes, stats.peak_bytes);
    return 0;
}
