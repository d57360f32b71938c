#include "Base/qvOS/File.h"

#include <windows.h>

#include "Base/qvOS/SystemError_internal.h"

namespace qvOS::detail {

qvUtil::Error renameFile(const qvString::CString& from, const qvString::CString& to,
                         bool overwrite, bool& crossDevice) {
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
