#include "Base/qvOS/SystemError_internal.h"

#include <windows.h>

namespace qvOS::detail {

// The Win32 codes a caller may want to tell apart; the rest are Failed.
static int osErrorCode(DWORD code) {
    switch (code) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_PATHNAME:
    case ERROR_DIRECTORY:
        return OSError::NotFound;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
    case ERROR_DIR_NOT_EMPTY:
        return OSError::AlreadyExists;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT:
        return OSError::PermissionDenied;
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_INVALID_NAME:
    case ERROR_INVALID_PARAMETER:
        return OSError::InvalidArgument;
    case WAIT_TIMEOUT:
        return OSError::TimedOut;
    default:
        return OSError::Failed;
    }
}

qvUtil::Error systemError(long code, const char* what, const qvString::CString& path) {
    DWORD err = static_cast<DWORD>(code);
    wchar_t* buffer = nullptr;
    DWORD n = FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                 FORMAT_MESSAGE_IGNORE_INSERTS,
                             nullptr, err, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    qvString::CString text;
    if (n && buffer)
        text = qvString::IString(buffer, n).toUtf8();
    if (buffer)
        LocalFree(buffer);
    // The system's messages end in ".\r\n"; the error is one line.
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' '))
        text.pop_back();
    if (text.empty())
        text = qvString::CString::format("system error %lu", static_cast<unsigned long>(err));
    return {osErrorCode(err), "%s \"%s\": %s", what, path.c_str(), text.c_str()};
}

qvUtil::Error lastSystemError(const char* what, const qvString::CString& path) {
    return systemError(static_cast<long>(GetLastError()), what, path);
}

std::string toAnsi(const qvString::CString& utf8) {
    if (GetACP() == CP_UTF8 || utf8.empty())
        return utf8;
    qvString::IString wide = utf8.toWide();
    int n = WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), nullptr, 0,
                                nullptr, nullptr);
    std::string out(static_cast<std::size_t>(n > 0 ? n : 0), '\0');
    if (n > 0)
        WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), out.data(), n,
                            nullptr, nullptr);
    return out;
}

qvString::CString fromAnsi(const char* text) {
    if (!text || !text[0])
        return {};
    if (GetACP() == CP_UTF8)
        return text;
    int n = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    if (n <= 1)
        return {};
    std::wstring wide(static_cast<std::size_t>(n), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), n);
    wide.resize(static_cast<std::size_t>(n - 1));
    return qvString::IString(wide).toUtf8();
}

} // namespace qvOS::detail
