// An exclusive, advisory lock on a file that lives as long as its holder: the system drops it
// when the holder unlocks, is destroyed or its process dies (also by kill -9), so a lock can
// never be left behind by a crash. It decides which of several processes owns a resource.
// Both systems agree on what is promised here; the POSIX body uses flock, the Windows body
// LockFileEx. The lock is per FileLock object: a second FileLock on the same path in the same
// process does not get it either.
#ifndef BASE_QVOS_FILELOCK_H
#define BASE_QVOS_FILELOCK_H

#include <cstdint>

#include "Base/BaseExport.h"
#include "Base/qvOS/OSError.h"
#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"

namespace qvOS {

/// One exclusive lock on one file; neither copied nor moved.
class BASE_API FileLock {
public:
    FileLock() = default;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    /// Unlocks.
    ~FileLock();

    /// Opens path (creating it, readable and writable by the user alone on POSIX) and tries
    /// to lock it without waiting. An empty error with isLocked() true: this object holds the
    /// lock. An empty error with isLocked() false: someone else holds it. An error (OSError
    /// code, the system's text, the path): the file could not be opened or locked. Locking
    /// again first unlocks.
    qvUtil::Error tryLock(const qvString::CString& path);
    /// True while this object holds its lock.
    bool isLocked() const noexcept { return handle_ != -1; }
    /// Gives the lock up and closes the file; harmless when not locked.
    void unlock() noexcept;

private:
    std::intptr_t handle_ = -1;
};

} // namespace qvOS

#endif
