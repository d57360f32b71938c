#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "Base/qvOS/SystemInfo.h"
#include "ObrixBase/memory/ma_memory_manager.h"
#include "tests/support/ReportCapture.h"

namespace {

int scratchFilesInTemp() {
    int n = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::string(qvOS::tempDirectory())))
        n += entry.path().filename().string().rfind("obrix-scratch-", 0) == 0;
    return n;
}

} // namespace

TEST(MaMmapMemory, RegionsAreZeroedWritableAndCountedApartFromTheHeap) {
    MA_Stats heapBefore;
    MA_get_stats(&heapBefore);
    MA_Mmap_stats before;
    Ma_getMmapStats(&before);
    const int filesBefore = scratchFilesInTemp();

    const size_t size = 3 * 4096 + 5;
    auto* anonymous = static_cast<unsigned char*>(Ma_allocMmapMemory(size, MA_MMAP_ANONYMOUS));
    auto* onDisk = static_cast<unsigned char*>(Ma_allocMmapMemory(size, MA_MMAP_TEMP_FILE));
    ASSERT_TRUE(anonymous && onDisk);
    EXPECT_EQ(scratchFilesInTemp(), filesBefore + 1);
    for (unsigned char* region : {anonymous, onDisk}) {
        EXPECT_EQ(Ma_mmapMemorySize(region), size);
        EXPECT_EQ(std::count(region, region + size, 0), static_cast<long>(size));
        region[0] = region[size - 1] = 0x7F;
    }
    MA_Mmap_stats during;
    Ma_getMmapStats(&during);
    EXPECT_EQ(during.live_bytes - before.live_bytes, 2 * size);
    EXPECT_EQ(during.live_regions - before.live_regions, 2u);
    MA_Stats heapDuring;
    MA_get_stats(&heapDuring);
    EXPECT_EQ(heapDuring.live_bytes, heapBefore.live_bytes);

    EXPECT_EQ(Ma_mmapMemorySize(onDisk + 1), 0u); // only a region's start names it
    EXPECT_EQ(Ma_freeMmapMemory(onDisk + 1), 0);
    EXPECT_EQ(Ma_freeMmapMemory(onDisk), 1);
    EXPECT_EQ(Ma_freeMmapMemory(onDisk), 0); // released whole, once
    EXPECT_EQ(Ma_freeMmapMemory(anonymous), 1);
    EXPECT_EQ(scratchFilesInTemp(), filesBefore);
    MA_Mmap_stats after;
    Ma_getMmapStats(&after);
    EXPECT_EQ(after.live_bytes, before.live_bytes);
    EXPECT_EQ(after.peak_bytes - before.live_bytes, 2 * size);
    EXPECT_EQ(after.total_regions - before.total_regions, 2u);

    EXPECT_EQ(Ma_allocMmapMemory(0, MA_MMAP_ANONYMOUS), nullptr);
    EXPECT_EQ(Ma_allocMmapMemory(16, static_cast<MA_Mmap_backing>(7)), nullptr);
    EXPECT_EQ(Ma_freeMmapMemory(nullptr), 0);
    EXPECT_EQ(Ma_mmapMemorySize(nullptr), 0u);
    Ma_getMmapStats(nullptr);
}

TEST(MaSystemMemory, FiguresAreConsistentAndFailuresAreReported) {
    MA_System_memory memory{};
    // The figures themselves are the platform query's (checked with it); these pass them on.
    qvOS::MemoryStatus system;
    ASSERT_TRUE(qvOS::querySystemMemory(system).isOk());
    ASSERT_EQ(Ma_getSystemMemory(&memory), 1);
    EXPECT_EQ(memory.physical_total, system.physicalTotal);
    EXPECT_EQ(memory.virtual_total, system.virtualTotal);
    EXPECT_EQ(Ma_getSystemMemory(nullptr), 0);

    uint64_t freeBytes = 0, totalBytes = 0;
    ASSERT_EQ(Ma_getDiskSpace(".", &freeBytes, &totalBytes), 1);
    EXPECT_LE(freeBytes, totalBytes);
    EXPECT_EQ(Ma_getDiskSpace(".", nullptr, nullptr), 1);
    EXPECT_EQ(Ma_getDiskSpace(nullptr, &freeBytes, &totalBytes), 0);

    obrix::test::ReportCapture capture;
    EXPECT_EQ(Ma_getDiskSpace("no/such/directory/here", &freeBytes, &totalBytes), 0);
    ASSERT_EQ(capture.reports().size(), 1u);
    EXPECT_EQ(capture.reports()[0].level, rptLevelError);
}
