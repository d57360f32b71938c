// Mapped scratch memory and the system's memory figures, over the platform layer's mapped
// files and system queries.
#include <cstdint>
#include <map>

#include "Base/qvOS/File.h"
#include "Base/qvOS/Filename.h"
#include "Base/qvOS/MemoryMappedFile.h"
#include "Base/qvOS/SystemInfo.h"
#include "Base/qvOS/Uuid.h"
#include "Base/rpt/rpt.h"
#include "ObrixBase/memory/ma_memory_manager.h"

namespace {

struct Region {
    qvOS::MemoryMappedFile mapping;
    std::size_t size = 0; // as asked; the mapping rounds up to whole pages
};

// Live regions by start address. Scratch regions are few and large, so an ordered map's cost
// is nothing beside the system call that maps one.
std::map<const void*, Region>& regions() {
    static std::map<const void*, Region> live;
    return live;
}

MA_Mmap_stats mmapStats{};

} // namespace

extern "C" {

void* Ma_allocMmapMemory(size_t size, MA_Mmap_backing backing) {
    // The C interface never throws: a region that cannot be recorded is not handed out.
    try {
        if (size == 0 || (backing != MA_MMAP_ANONYMOUS && backing != MA_MMAP_TEMP_FILE))
            return nullptr;
        Region region;
        region.size = size;
        qvUtil::Error error;
        if (backing == MA_MMAP_ANONYMOUS) {
            error = region.mapping.createAnonymous(size);
        } else {
            const qvString::CString path = qvOS::Filename::join(
                qvOS::tempDirectory(), "obrix-scratch-" + qvOS::Uuid().asString() + ".tmp");
            error = region.mapping.createFile(path, size);
            if (error.isError())
                (void)qvOS::fileDelete(path); // a file created before the mapping failed
        }
        if (error.isError()) {
            rptError("Ma_allocMmapMemory: cannot map %llu bytes: %s\n",
                     static_cast<unsigned long long>(size), error.message().c_str());
            return nullptr;
        }
        void* start = region.mapping.data();
        regions().emplace(start, std::move(region));
        mmapStats.live_bytes += size;
        mmapStats.live_regions += 1;
        mmapStats.total_regions += 1;
        if (mmapStats.live_bytes > mmapStats.peak_bytes)
            mmapStats.peak_bytes = mmapStats.live_bytes;
        return start;
    } catch (...) {
        return nullptr;
    }
}

int Ma_freeMmapMemory(void* start) {
    auto found = regions().find(start);
    if (!start || found == regions().end())
        return 0;
    // The C interface never throws: copying the path is the one step that may, and it comes
    // before anything changes.
    qvString::CString path;
    try {
        path = found->second.mapping.path();
    } catch (...) {
        return 0;
    }
    mmapStats.live_bytes -= found->second.size;
    mmapStats.live_regions -= 1;
    regions().erase(found); // unmaps
    if (!path.empty()) {
        try {
            const qvUtil::Error error = qvOS::fileDelete(path);
            if (error.isError())
                rptError("Ma_freeMmapMemory: %s\n", error.message().c_str());
        } catch (...) {
            // the region is released; only its file is left behind in the temporary directory
        }
    }
    return 1;
}

size_t Ma_mmapMemorySize(const void* start) {
    auto found = regions().find(start);
    return start && found != regions().end() ? found->second.size : 0;
}

void Ma_getMmapStats(MA_Mmap_stats* stats) {
    if (stats)
        *stats = mmapStats;
}

int Ma_getSystemMemory(MA_System_memory* memory) {
    if (!memory)
        return 0;
    qvOS::MemoryStatus status;
    const qvUtil::Error error = qvOS::querySystemMemory(status);
    if (error.isError()) {
        rptError("Ma_getSystemMemory: %s\n", error.message().c_str());
        return 0;
    }
    *memory =
        MA_System_memory{status.physicalTotal,    status.physicalAvailable, status.virtualTotal,
                         status.virtualAvailable, status.swapTotal,         status.swapFree};
    return 1;
}

int Ma_getDiskSpace(const char* path, uint64_t* free_bytes, uint64_t* total_bytes) {
    if (!path)
        return 0;
    std::uint64_t freeBytes = 0, totalBytes = 0;
    const qvUtil::Error error = qvOS::queryDiskSpace(path, freeBytes, totalBytes);
    if (error.isError()) {
        rptError("Ma_getDiskSpace: %s\n", error.message().c_str());
        return 0;
    }
    if (free_bytes)
        *free_bytes = freeBytes;
    if (total_bytes)
        *total_bytes = totalBytes;
    return 1;
}

} // extern "C"
