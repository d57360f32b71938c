// The processor's vector level, decided once per process for every dispatched routine.
#include <algorithm>
#include <cstdlib>

#include "ObrixBase/math/kernels/detail/simd_internal.h"

namespace qvObrixBase::kernels::detail {

int simdLevel() {
#if defined(__GNUC__) && defined(__x86_64__)
    static const int level = [] {
        __builtin_cpu_init();
        int widest = __builtin_cpu_supports("avx512f")                                 ? 2
                     : __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") ? 1
                                                                                       : 0;
        if (const char* cap = std::getenv("OBRIX_KERNEL_SIMD"))
            if (cap[0] >= '0' && cap[0] <= '2' && cap[1] == '\0')
                widest = std::min(widest, cap[0] - '0');
        return widest;
    }();
    return level;
#else
    return 0;
#endif
}

} // namespace qvObrixBase::kernels::detail
