#include "Base/qvOS/File.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

#include "Base/qvOS/SystemError_internal.h"

namespace qvOS::detail {

qvUtil::Error syncFile(const qvString::CString& path) {
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return lastSystemError("Cannot write", path);
    int rc = ::fsync(fd);
    qvUtil::Error e = rc == 0 ? qvUtil::Error() : lastSystemError("Cannot write", path);
    ::close(fd);
    return e;
}

qvUtil::Error renameFile(const qvString::CString& from, const qvString::CString& to, bool overwrite,
                         bool& crossDevice) {
    crossDevice = false;
    const char* what = "Cannot move";
#ifdef RENAME_NOREPLACE
    // Linux decides "target exists" and the rename in one step, so no other process can slip a
    // file in between the caller's check and the rename.
    if (!overwrite) {
        if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
            return {};
        if (errno != EINVAL && errno != ENOSYS) {
            crossDevice = errno == EXDEV;
            return lastSystemError(what, from + "\" to \"" + to);
        }
        // A file system without the flag: the caller's existence check has to do.
    }
#else
    (void)overwrite; // only the caller's existence check guards the target here
#endif
    if (std::rename(from.c_str(), to.c_str()) == 0)
        return {};
    crossDevice = errno == EXDEV;
    return lastSystemError(what, from + "\" to \"" + to);
}

} // namespace qvOS::detail
