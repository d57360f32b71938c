#include "Base/qvOS/SystemError_internal.h"

#include <cerrno>
#include <cstring>

namespace qvOS::detail {

qvUtil::Error systemError(long code, const char* what, const qvString::CString& path) {
    return fromErrorCode(what, path,
                         std::error_code(static_cast<int>(code), std::generic_category()));
}

qvUtil::Error lastSystemError(const char* what, const qvString::CString& path) {
    return systemError(errno, what, path);
}

} // namespace qvOS::detail
