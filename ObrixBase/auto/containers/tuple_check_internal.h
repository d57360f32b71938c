// The hard bounds assertion shared by the tuple containers.
#ifndef OBRIX_AUTO_CONTAINERS_TUPLE_CHECK_INTERNAL_H
#define OBRIX_AUTO_CONTAINERS_TUPLE_CHECK_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "tuple_check_internal.h is private to libObrixBase; include the public headers instead"
#endif

#include <cstdlib>

#include "Base/rpt/rpt.h"

namespace obrix::detail {

/// Reports "**** Bounds checking ( what, index ) in FILE file LINE line" and aborts. The line
/// numbers are fixed per check (36 point index, 37 row, 41 column): users match on them.
[[noreturn]] inline void tupleBoundsFailure(const char* what, int index, const char* file,
                                            int line) {
    rptError("**** %s ( %s, %d ) in FILE %s LINE %d\n", "Bounds checking", what, index, file, line);
    std::abort();
}

} // namespace obrix::detail

#endif
