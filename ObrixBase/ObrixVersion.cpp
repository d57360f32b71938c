#include "ObrixBase/ObrixVersion.h"

// Compiled into the library, so these answer with the library's own numbers even when the
// caller was compiled against other headers.
int obrixVersionNumber(void) {
    return OBRIX_VERSION_NUMBER;
}

const char* obrixVersionString(void) {
    return OBRIX_VERSION_STRING;
}
