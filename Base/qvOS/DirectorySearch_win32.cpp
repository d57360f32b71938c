#include "Base/qvOS/DirectorySearch.h"

#include <windows.h>

#include "Base/qvOS/Filename.h"
#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

qvUtil::Error DirectorySearch::open(const qvString::CString& dir) {
    close();
    const char* what = "Cannot list directory";
    if (auto e = detail::checkPath(what, dir); e.isError())
        return e;
    qvString::CString pattern = dir;
    if (!Filename::isSeparator(pattern.back()) && !(pattern.size() == 2 && pattern[1] == ':'))
        pattern += '\\';
    pattern += '*';
    WIN32_FIND_DATAA found;
    HANDLE h = FindFirstFileA(detail::toAnsi(pattern).c_str(), &found);
    if (h == INVALID_HANDLE_VALUE) {
        DWORD err = GetLastError();
        // "Nothing matches" from an existing directory (a drive root lists no "." or "..").
        if (err == ERROR_FILE_NOT_FOUND || err == ERROR_NO_MORE_FILES)
            return detail::pathError(NoEntries, what, dir, "the directory lists nothing");
        // A file named as the directory gets the same answer on every Windows version.
        DWORD attributes = GetFileAttributesW(dir.toWide().c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY))
            err = ERROR_DIRECTORY;
        return detail::systemError(static_cast<long>(err), what, dir);
    }
    handle_ = h;
    // FindFirstFileA hands out the first name at once; next() returns it first.
    first_ = detail::fromAnsi(found.cFileName);
    haveFirst_ = true;
    return {};
}

bool DirectorySearch::next(qvString::CString& name) {
    if (!handle_)
        return false;
    if (haveFirst_) {
        haveFirst_ = false;
        name = first_;
        return true;
    }
    WIN32_FIND_DATAA found;
    if (!FindNextFileA(static_cast<HANDLE>(handle_), &found))
        return false;
    name = detail::fromAnsi(found.cFileName);
    return true;
}

void DirectorySearch::close() noexcept {
    if (handle_)
        FindClose(static_cast<HANDLE>(handle_));
    handle_ = nullptr;
    haveFirst_ = false;
    first_.clear();
}

} // namespace qvOS
