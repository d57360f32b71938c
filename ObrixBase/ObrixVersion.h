/* The library's version, twice: the macros give the version these headers belong to (fixed
   when a program is compiled), obrixVersionNumber() and obrixVersionString() the version of
   the library actually loaded, so a program can notice that it runs against another one.
   Valid C11. The build refuses to configure when these numbers and the project's differ. */
#ifndef OBRIX_OBRIXVERSION_H
#define OBRIX_OBRIXVERSION_H

#include "ObrixBase/ObrixExport.h"

/**@{*/
/** The version of the headers in use; obrixVersionString() gives the loaded library's. */
#define OBRIX_VERSION_MAJOR 0
#define OBRIX_VERSION_MINOR 1
#define OBRIX_VERSION_PATCH 0
#define OBRIX_VERSION_STRING "0.1.0"
/**@}*/
/** major * 10000 + minor * 100 + patch: compares in one test (0.1.0 is 100). */
#define OBRIX_VERSION_NUMBER                                                                       \
    (OBRIX_VERSION_MAJOR * 10000 + OBRIX_VERSION_MINOR * 100 + OBRIX_VERSION_PATCH)

OBRIX_EXTERN_C_BEGIN

/** The loaded library's version as OBRIX_VERSION_NUMBER computes it. Programs built against
    one minor version run with any later patch of it (the shared library's name changes
    with the major version). */
OBRIX_API int obrixVersionNumber(void);

/** The loaded library's version as "major.minor.patch"; a static string, never null. */
OBRIX_API const char* obrixVersionString(void);

OBRIX_EXTERN_C_END

#endif
