#include "Base/qvOS/File.h"

#include <windows.h>

#include "Base/qvOS/SystemError_internal.h"

namespace qvOS::detail {

qvUtil::Error syncFile(const qvString::CString& path) {
    HANDLE h = CreateFileW(path.toWide().c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                           OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) {
        // A copy of a read-only file is read-only too and cannot be opened for the flush; its
        // bytes are complete, only left to the system's own write-back.
        if (GetLastError() == ERROR_ACCESS_DENIED)
            return {};
        return lastSystemError("Cannot write", path);
    }
    qvUtil::Error e = FlushFileBuffers(h) ? qvUtil::Error() : lastSystemError("Cannot write", path);
    CloseHandle(h);
    return e;
}

qvUtil::Error renameFile(const qvString::CString& from, const qvString::CString& to, bool overwrite,
                         bool& crossDevice) {
    crossDevice = false;
    // Without MOVEFILE_REPLACE_EXISTING the system itself refuses an existing target, in the
    // same step as the rename.
    DWORD flags = overwrite ? MOVEFILE_REPLACE_EXISTING : 0;
    if (MoveFileExW(from.toWide().c_str(), to.toWide().c_str(), flags))
        return {};
    DWORD err = GetLastError();
    crossDevice = err == ERROR_NOT_SAME_DEVICE;
    return systemError(static_cast<long>(err), "Cannot move", from + "\" to \"" + to);
}

} // namespace qvOS::detail
