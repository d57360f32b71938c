#include "Base/qvOS/FileLock.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace qvOS {

FileLock::~FileLock() {
    unlock();
}

qvUtil::Error FileLock::tryLock(const qvString::CString& path) {
    unlock();
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) {
        const int code = errno == ENOENT   ? OSError::NotFound
                         : errno == EACCES ? OSError::PermissionDenied
                                           : OSError::Failed;
        return qvUtil::Error(code, "cannot open %s: %s", path.c_str(), std::strerror(errno));
    }
    // flock belongs to the open file description, so it is released when this descriptor
    // closes, whatever else the process has open on the same file.
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const int err = errno;
        ::close(fd);
        if (err == EWOULDBLOCK)
            return {};
        return qvUtil::Error(OSError::Failed, "cannot lock %s: %s", path.c_str(),
                             std::strerror(err));
    }
    handle_ = fd;
    return {};
}

void FileLock::unlock() noexcept {
    if (handle_ != -1)
        ::close(static_cast<int>(handle_));
    handle_ = -1;
}

} // namespace qvOS
