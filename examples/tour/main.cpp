// A short walk through the library: each chapter shows one subsystem at work.
#include <cstdio>

#include "ObrixBase/ObrixBase.h"
#include "examples/tour/tour.h"

void tourHeading(const char* title) {
    std::printf("\n== %s ==\n", title);
}

int main() {
    std::printf("ObrixBase tour\n");
    tourDiagnostics();
    tourContainers();
    tourGeometry();
    tourNumerics();
    tourFactorisations();
    tourUndo();
    tourDebugDraw();

    MA_Stats stats;
    MA_get_stats(&stats);
    std::printf("\naccounted memory at the end: %zu bytes live in %zu blocks (peak %zu bytes)\n",
                stats.live_bytes, stats.live_blocks, stats.peak_bytes);
    return 0;
}
