#include "Base/qvOS/FileLock.h"

#include <windows.h>

namespace qvOS {
namespace {

qvString::CString systemText(DWORD code) {
    char* text = nullptr;
    const DWORD n = FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                       FORMAT_MESSAGE_IGNORE_INSERTS,
                                   nullptr, code, 0, reinterpret_cast<char*>(&text), 0, nullptr);
    qvString::CString result(text ? text : "", n);
    LocalFree(text);
    while (!result.empty() && (result.back() == '\n' || result.back() == '\r'))
        result.pop_back();
    return result;
}

} // namespace

FileLock::~FileLock() {
    unlock();
}

qvUtil::Error FileLock::tryLock(const qvString::CString& path) {
    unlock();
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        const DWORD err = GetLastError();
        const int code = err == ERROR_PATH_NOT_FOUND  ? OSError::NotFound
                         : err == ERROR_ACCESS_DENIED ? OSError::PermissionDenied
                                                      : OSError::Failed;
        return qvUtil::Error(code, "cannot open %s: %s", path.c_str(), systemText(err).c_str());
    }
    OVERLAPPED at = {};
    if (!LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &at)) {
        const DWORD err = GetLastError();
        CloseHandle(file);
        if (err == ERROR_LOCK_VIOLATION || err == ERROR_IO_PENDING)
            return {};
        return qvUtil::Error(OSError::Failed, "cannot lock %s: %s", path.c_str(),
                             systemText(err).c_str());
    }
    handle_ = reinterpret_cast<std::intptr_t>(file);
    return {};
}

void FileLock::unlock() noexcept {
    // Closing the handle releases the lock with it.
    if (handle_ != -1)
        CloseHandle(reinterpret_cast<HANDLE>(handle_));
    handle_ = -1;
}

} // namespace qvOS
