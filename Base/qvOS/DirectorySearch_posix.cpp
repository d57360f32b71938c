#include "Base/qvOS/DirectorySearch.h"

#include <cerrno>

#include <dirent.h>

#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

qvUtil::Error DirectorySearch::open(const qvString::CString& dir) {
    close();
    const char* what = "Cannot list directory";
    if (auto e = detail::checkPath(what, dir); e.isError())
        return e;
    DIR* d = ::opendir(dir.c_str());
    if (!d)
        return detail::lastSystemError(what, dir);
    handle_ = d;
    return {};
}

bool DirectorySearch::next(qvString::CString& name) {
    if (!handle_)
        return false;
    // readdir's entry belongs to the stream; the name is copied out before the next call.
    errno = 0;
    dirent* entry = ::readdir(static_cast<DIR*>(handle_));
    if (!entry)
        return false;
    name = entry->d_name;
    return true;
}

void DirectorySearch::close() noexcept {
    if (handle_)
        ::closedir(static_cast<DIR*>(handle_));
    handle_ = nullptr;
    haveFirst_ = false;
}

} // namespace qvOS
