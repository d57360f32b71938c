// File-name arithmetic on 8-bit (UTF-8) paths: joining, splitting, absolute or not, the
// separator and drive conventions of the running system, and creating a directory with its
// parents. Only makeDir and currentDrive touch the file system.
#ifndef BASE_QVOS_FILENAME_H
#define BASE_QVOS_FILENAME_H

#include "Base/BaseExport.h"
#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"

namespace qvOS {

/// Static helpers on file names. Both systems accept '/' as a separator; Windows also accepts
/// '\\' and has drive letters ("C:"), POSIX has neither.
class BASE_API Filename {
public:
    /// The native separator: '/' on POSIX, '\\' on Windows.
    static char separator() noexcept;
    /// True for '/' everywhere, and also for '\\' on Windows.
    static bool isSeparator(char c) noexcept;
    /// False on POSIX (no drive letters), true on Windows.
    static bool hasDrives() noexcept;
    /// dir + separator + name, without a doubled separator when dir already ends in one; an
    /// empty dir gives name unchanged, an empty name gives dir unchanged.
    static qvString::CString join(const qvString::CString& dir, const qvString::CString& name);
    /// POSIX: path starts with '/'. Windows: "X:\", "X:/", "\\server", or a leading separator
    /// (rooted on the current drive). Null or empty gives false.
    static bool isAbsolute(const char* path) noexcept;
    /// Everything before the last separator ("" when there is none); a path whose only
    /// separator is the leading one gives that separator ("/x" -> "/"). On Windows a drive
    /// prefix stays with the directory ("C:\x" -> "C:\").
    static qvString::CString directory(const qvString::CString& path);
    /// Everything after the last separator (the whole path when there is none; "" when the
    /// path ends in a separator).
    static qvString::CString base(const qvString::CString& path);
    /// Creates the directory and every missing parent; an existing directory is success.
    /// Errors: InvalidArgument for an empty path; AlreadyExists when a part of the path is a
    /// file; otherwise the system's code mapped to OSError, with its message and the path.
    static qvUtil::Error makeDir(const qvString::CString& path);
    /// The current drive: 1 = A, 2 = B, ... on Windows; always 0 on POSIX, which has no drives.
    static int currentDrive() noexcept;
};

} // namespace qvOS

#endif
