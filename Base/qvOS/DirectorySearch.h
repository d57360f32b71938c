// Lists the names in one directory, in the order the system gives them, with the same
// behaviour over FindFirstFileA/FindNextFileA on Windows and opendir/readdir on POSIX.
#ifndef BASE_QVOS_DIRECTORYSEARCH_H
#define BASE_QVOS_DIRECTORYSEARCH_H

#include "Base/BaseExport.h"
#include "Base/qvOS/OSError.h"
#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"

namespace qvOS {

/// One listing of one directory; not copyable. Typical use:
///   DirectorySearch s; if (s.open(dir).isOk()) for (CString n; s.next(n);) ...
class BASE_API DirectorySearch {
public:
    /// The error code when the directory exists but the system lists nothing in it (a Windows
    /// drive root can; a POSIX directory always has "." and ".."). next() then returns false.
    static constexpr int NoEntries = OSError::NoEntries;

    DirectorySearch() = default;
    /// Closes.
    ~DirectorySearch();
    DirectorySearch(const DirectorySearch&) = delete;
    DirectorySearch& operator=(const DirectorySearch&) = delete;

    /// Starts listing directory dir ("." and ".." included, as both systems report them),
    /// closing any earlier listing first. A trailing separator is allowed. Errors: empty dir is
    /// InvalidArgument; a missing dir, or a file, NotFound; with the system's message.
    qvUtil::Error open(const qvString::CString& dir);
    /// The next name (without the directory); false at the end or when nothing is open.
    bool next(qvString::CString& name);
    /// Ends the listing; harmless when nothing is open.
    void close() noexcept;

private:
    void* handle_ = nullptr;  // DIR* on POSIX, the find HANDLE on Windows
    qvString::CString first_; // Windows: the name FindFirstFileA already returned
    bool haveFirst_ = false;
};

} // namespace qvOS

#endif
