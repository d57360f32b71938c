// A program outside the project that uses the installed library through its umbrella header.
#include "ObrixBase/ObrixBase.h"

#include <cstdio>

int main() {
    void* p = MA_malloc(16, __LINE__, __FILE__);
    MA_Stats stats;
    MA_get_stats(&stats);
    MA_free(p);
    std::printf("consumer: %zu live block(s) while holding one\n", stats.live_blocks);
    return stats.live_blocks >= 1 ? 0 : 1;
}
