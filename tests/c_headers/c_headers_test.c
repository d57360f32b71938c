/* Compiled as strict C11: the umbrella header's C part must contain no C++. */
#include "ObrixBase/ObrixBase.h"

int main(void) {
    void* p = MA_malloc(8, __LINE__, __FILE__);
    MA_free(p);
    return p ? 0 : 1;
}
