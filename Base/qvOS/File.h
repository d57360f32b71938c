// Questions about one path (exists, type, size, modification time) and whole-file copy,
// delete and move. Every failure is a qvUtil::Error with an OSError code, the system's own
// message and the path; nothing throws.
#ifndef BASE_QVOS_FILE_H
#define BASE_QVOS_FILE_H

#include <cstdint>

#include "Base/BaseExport.h"
#include "Base/qvOS/OSError.h"
#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"

namespace qvOS {

/// What a path names.
enum class FileType { Missing, Regular, Directory, Other };

/// The answer of File::query.
struct FileInfo {
    /// False when nothing is at the path (the other fields are then 0).
    bool exists = false;
    /// What the path names; Missing when `exists` is false.
    FileType type = FileType::Missing;
    std::uint32_t modeBits =
        0;                  ///< st_mode & 0xF000 form on both systems: 0x4000 dir, 0x8000 regular
    std::uint64_t size = 0; ///< bytes; 0 for a directory
    std::int64_t modified = 0; ///< seconds since 1970-01-01 UTC
};

/// Queries about a path.
class BASE_API File {
public:
    /// Fills info for path (symbolic links are followed). A missing path is not an error
    /// (exists = false, type Missing); an empty path is InvalidArgument, and any other failure
    /// (permission, over-long name) is an error with info left as "missing".
    static qvUtil::Error query(const qvString::CString& path, FileInfo& info);
};

/// Copies the regular file from to to. overwrite: true replaces an existing target; false
/// makes an existing target an AlreadyExists error and leaves it untouched. The meaning is the
/// same on both systems. The bytes are written to a temporary file beside the target, which is
/// then renamed over it, so a failed copy never leaves a half-written target (and the temporary
/// is removed). The target gets the source's permission bits on POSIX.
BASE_API qvUtil::Error fileCopy(const qvString::CString& from, const qvString::CString& to,
                                bool overwrite);
/// Deletes a file (not a directory). A missing file is a NotFound error.
BASE_API qvUtil::Error fileDelete(const qvString::CString& path);
/// Moves (renames) a file or directory; overwrite as for fileCopy. Across file systems a
/// regular file is copied (through a temporary, as fileCopy) and the source deleted.
BASE_API qvUtil::Error fileMove(const qvString::CString& from, const qvString::CString& to,
                                bool overwrite);

} // namespace qvOS

#endif
