// The codes that qvOS services put into the qvUtil::Error values they return. They are the same
// on every system, so a caller can tell "not there" from "not allowed" without knowing errno or
// GetLastError; the message always carries the system's own text and the path that failed.
#ifndef BASE_QVOS_OSERROR_H
#define BASE_QVOS_OSERROR_H

namespace qvOS {

/// Error codes of qvOS services (0 is success, as for every qvUtil::Error).
struct OSError {
    enum : int {
        Failed = 1,           ///< any failure not listed below
        NoEntries = 2,        ///< a directory exists but lists nothing (DirectorySearch)
        NotFound = 3,         ///< the file, directory or program does not exist
        AlreadyExists = 4,    ///< the target exists and overwriting was not asked for
        PermissionDenied = 5, ///< the system refused access
        InvalidArgument = 6,  ///< null, empty or over-long path, or other bad input
        TimedOut = 7,         ///< a process outlived the time it was given
    };
};

} // namespace qvOS

#endif
