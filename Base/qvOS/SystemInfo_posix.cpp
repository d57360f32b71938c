#include "Base/qvOS/SystemInfo.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/resource.h>
#include <sys/statvfs.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

// "MemAvailable" of /proc/meminfo counts reclaimable cache too, which is what "available to
// new work" means; free RAM alone understates it badly on a busy machine.
static bool memAvailable(std::uint64_t& bytes) {
    std::FILE* f = std::fopen("/proc/meminfo", "r");
    if (!f)
        return false;
    char line[256];
    bool found = false;
    while (std::fgets(line, sizeof line, f)) {
        unsigned long long kib = 0;
        if (std::sscanf(line, "MemAvailable: %llu kB", &kib) == 1) {
            bytes = kib * 1024;
            found = true;
            break;
        }
    }
    std::fclose(f);
    return found;
}

// This process's mapped address space, from the first field of /proc/self/statm (pages).
static std::uint64_t addressSpaceInUse() {
    std::FILE* f = std::fopen("/proc/self/statm", "r");
    if (!f)
        return 0;
    unsigned long long pages = 0;
    if (std::fscanf(f, "%llu", &pages) != 1)
        pages = 0;
    std::fclose(f);
    return pages * pageSize();
}

qvUtil::Error querySystemMemory(MemoryStatus& status) {
    status = MemoryStatus{};
    struct sysinfo si;
    if (::sysinfo(&si) != 0)
        return detail::lastSystemError("Cannot query", "system memory");
    std::uint64_t unit = si.mem_unit ? si.mem_unit : 1;
    MemoryStatus s;
    s.physicalTotal = std::uint64_t(si.totalram) * unit;
    if (!memAvailable(s.physicalAvailable))
        s.physicalAvailable = (std::uint64_t(si.freeram) + si.bufferram) * unit;
    s.swapTotal = std::uint64_t(si.totalswap) * unit;
    s.swapFree = std::uint64_t(si.freeswap) * unit;
    rlimit limit;
    // Without a limit, the 47 bits of user address space of 64-bit Linux.
    s.virtualTotal = std::uint64_t(1) << 47;
    if (::getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY)
        s.virtualTotal = limit.rlim_cur;
    std::uint64_t used = addressSpaceInUse();
    s.virtualAvailable = used < s.virtualTotal ? s.virtualTotal - used : 0;
    status = s;
    return {};
}

qvUtil::Error queryDiskSpace(const qvString::CString& path, std::uint64_t& freeBytes,
                             std::uint64_t& totalBytes) {
    freeBytes = totalBytes = 0;
    const char* what = "Cannot query disk space of";
    if (auto e = detail::checkPath(what, path); e.isError())
        return e;
    struct statvfs fs;
    if (::statvfs(path.c_str(), &fs) != 0)
        return detail::lastSystemError(what, path);
    freeBytes = std::uint64_t(fs.f_bavail) * fs.f_frsize;
    totalBytes = std::uint64_t(fs.f_blocks) * fs.f_frsize;
    return {};
}

std::uint64_t pageSize() noexcept {
    long n = ::sysconf(_SC_PAGESIZE);
    return n > 0 ? static_cast<std::uint64_t>(n) : 4096;
}

} // namespace qvOS
