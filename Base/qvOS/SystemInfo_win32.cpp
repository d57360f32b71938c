#include "Base/qvOS/SystemInfo.h"

#include <windows.h>

#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

qvUtil::Error querySystemMemory(MemoryStatus& status) {
    status = MemoryStatus{};
    MEMORYSTATUSEX m;
    m.dwLength = sizeof m;
    if (!GlobalMemoryStatusEx(&m))
        return detail::lastSystemError("Cannot query", "system memory");
    status.physicalTotal = m.ullTotalPhys;
    status.physicalAvailable = m.ullAvailPhys;
    status.virtualTotal = m.ullTotalVirtual;
    status.virtualAvailable = m.ullAvailVirtual;
    // The page file total counts RAM as well; swap is what lies beyond it.
    status.swapTotal =
        m.ullTotalPageFile > m.ullTotalPhys ? m.ullTotalPageFile - m.ullTotalPhys : 0;
    std::uint64_t committedBeyond =
        m.ullAvailPageFile > m.ullAvailPhys ? m.ullAvailPageFile - m.ullAvailPhys : 0;
    status.swapFree = committedBeyond < status.swapTotal ? committedBeyond : status.swapTotal;
    return {};
}

qvUtil::Error queryDiskSpace(const qvString::CString& path, std::uint64_t& freeBytes,
                             std::uint64_t& totalBytes) {
    freeBytes = totalBytes = 0;
    const char* what = "Cannot query disk space of";
    if (auto e = detail::checkPath(what, path); e.isError())
        return e;
    // The call wants a directory; a file's own directory holds the same space.
    qvString::CString dir = path;
    DWORD attributes = GetFileAttributesW(path.toWide().c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return detail::lastSystemError(what, path);
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) {
        std::size_t at = dir.find_last_of("\\/");
        dir = at == qvString::CString::npos ? qvString::CString(".") : dir.substr(0, at + 1);
    }
    ULARGE_INTEGER available, total;
    if (!GetDiskFreeSpaceExA(detail::toAnsi(dir).c_str(), &available, &total, nullptr))
        return detail::lastSystemError(what, path);
    freeBytes = available.QuadPart;
    totalBytes = total.QuadPart;
    return {};
}

std::uint64_t pageSize() noexcept {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.dwPageSize;
}

} // namespace qvOS
