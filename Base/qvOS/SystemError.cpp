#include "Base/qvOS/SystemError_internal.h"

#include <cerrno>

namespace qvOS::detail {

qvUtil::Error checkPath(const char* what, const qvString::CString& path) {
    if (path.empty())
        return {OSError::InvalidArgument, "%s: the path is empty", what};
    if (path.find('\0') != qvString::CString::npos)
        return {OSError::InvalidArgument, "%s: the path contains a NUL character", what};
    if (path.size() > MaxPathBytes)
        return {OSError::InvalidArgument,
                "%s: the path is %llu bytes long, longer than the %llu the system allows", what,
                static_cast<unsigned long long>(path.size()),
                static_cast<unsigned long long>(MaxPathBytes)};
    return {};
}

static int osErrorCode(std::error_code code) {
    std::error_condition c = code.default_error_condition();
    if (c == std::errc::no_such_file_or_directory || c == std::errc::not_a_directory ||
        c == std::errc::no_such_process)
        return OSError::NotFound;
    if (c == std::errc::file_exists || c == std::errc::directory_not_empty)
        return OSError::AlreadyExists;
    if (c == std::errc::permission_denied || c == std::errc::operation_not_permitted)
        return OSError::PermissionDenied;
    if (c == std::errc::filename_too_long || c == std::errc::invalid_argument)
        return OSError::InvalidArgument;
    if (c == std::errc::timed_out)
        return OSError::TimedOut;
    return OSError::Failed;
}

qvUtil::Error fromErrorCode(const char* what, const qvString::CString& path, std::error_code code) {
#ifdef _WIN32
    // std::filesystem reports Win32 codes in the system category; their text and code come
    // from the same place as every other Windows failure.
    if (code.category() == std::system_category())
        return systemError(code.value(), what, path);
#endif
    std::string text = code.message();
    // Windows' messages end in ".\r\n"; the error is one line.
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' '))
        text.pop_back();
    return {osErrorCode(code), "%s \"%s\": %s", what, path.c_str(), text.c_str()};
}

qvUtil::Error pathError(int code, const char* what, const qvString::CString& path,
                        const char* reason) {
    return {code, "%s \"%s\": %s", what, path.c_str(), reason};
}

} // namespace qvOS::detail
