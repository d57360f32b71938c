// Where the running application and its helper programs are. Helper programs (the cache
// server, the warning box) sit beside the application's binaries; getBinaryPath finds them
// from the build tree, from an installed tree, and from a library loaded by an application
// that lives elsewhere.
#ifndef BASE_QVOS_APPMAIN_H
#define BASE_QVOS_APPMAIN_H

#include "Base/BaseExport.h"
#include "Base/qvString/CString.h"

namespace qvOS {

/// The application's own location and its helper programs.
class BASE_API AppMain {
public:
    /// Full path of helper program name (".exe" is appended on Windows unless name already
    /// ends in it). The candidates, in this order:
    ///   1. the directory named by the environment variable OBRIX_HELPER_DIR, when set and not
    ///      empty (the override: point it at a folder of helpers to use those);
    ///   2. the directory of the running executable (`build/<preset>/bin` in a build tree, where
    ///      every program and test of the build lands; `<prefix>/bin` when installed);
    ///   3. the directory holding libBase itself (an application elsewhere that loads an
    ///      installed or built libBase);
    ///   4. libBase's install-relative program directory (`<prefix>/bin` beside `<prefix>/lib`).
    /// Returns the first candidate that exists as a file. When none does, returns candidate 2
    /// (or the bare name when even that is unknown), so that starting it fails with a clear
    /// "no such program" error naming a sensible path. A null or empty name gives "".
    static qvString::CString getBinaryPath(const char* name);
    /// Full path of the running executable; "" when the system does not say.
    static qvString::CString getExecutablePath();
    /// Full path of the libBase shared library (or DLL) itself; "" when the system does not say.
    static qvString::CString getLibraryPath();
};

} // namespace qvOS

#endif
