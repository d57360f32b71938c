#include "Base/qvOS/AppMain.h"

#include <climits>
#include <cstdlib>

#include <dlfcn.h>
#include <unistd.h>

namespace qvOS {

qvString::CString AppMain::getExecutablePath() {
    // /proc/self/exe is the kernel's own record of the running image, independent of argv[0]
    // and of the working directory.
    char buffer[PATH_MAX];
    ssize_t n = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    if (n <= 0)
        return {};
    return qvString::CString(buffer, static_cast<std::size_t>(n));
}

qvString::CString AppMain::getLibraryPath() {
    // The loader knows which shared object holds this very function.
    Dl_info info{};
    if (!::dladdr(reinterpret_cast<void*>(&AppMain::getLibraryPath), &info) || !info.dli_fname)
        return {};
    char* resolved = ::realpath(info.dli_fname, nullptr);
    if (!resolved)
        return info.dli_fname;
    qvString::CString path = resolved;
    std::free(resolved);
    return path;
}

} // namespace qvOS
