#include "Base/qvOS/MemoryMappedFile.h"

#include <cstring>
#include <utility>

#include <gtest/gtest.h>

#include "Base/qvOS/AppMain.h"
#include "Base/qvOS/File.h"
#include "Base/qvOS/Process.h"
#include "tests/support/TempDir.h"

using obrixtest::TempDir;
using qvOS::MemoryMappedFile;

namespace {

TEST(MemoryMappedFile, CreatedFileHasItsSizeIsZeroedAndKeepsWritesAfterUnmap) {
    TempDir tmp;
    const qvString::CString path = tmp / "ring \xc3\xa9.dat";
    const std::uint64_t size = 3 * 4096 + 17; // not a whole number of pages
    {
        MemoryMappedFile map;
        ASSERT_TRUE(map.createFile(path, size).isOk());
        ASSERT_TRUE(map.isMapped());
        EXPECT_EQ(map.size(), size);
        EXPECT_EQ(map.path(), path);
        auto* bytes = static_cast<unsigned char*>(map.data());
        for (std::uint64_t i = 0; i < size; ++i)
            ASSERT_EQ(bytes[i], 0) << i;
        std::memcpy(bytes, "head", 4);
        std::memcpy(bytes + size - 4, "tail", 4);
        ASSERT_TRUE(map.flush().isOk());
        // Moving hands the mapping over; the source is left empty and unmaps nothing.
        MemoryMappedFile moved = std::move(map);
        EXPECT_FALSE(map.isMapped());
        EXPECT_EQ(moved.size(), size);
    }
    qvOS::FileInfo info;
    ASSERT_TRUE(qvOS::File::query(path, info).isOk());
    EXPECT_EQ(info.size, size);
    std::string content = TempDir::read(path);
    EXPECT_EQ(content.substr(0, 4), "head");
    EXPECT_EQ(content.substr(content.size() - 4), "tail");

    MemoryMappedFile again;
    ASSERT_TRUE(again.openFile(path, true).isOk());
    EXPECT_EQ(again.size(), size);
    EXPECT_EQ(std::memcmp(again.data(), "head", 4), 0);
}

TEST(MemoryMappedFile, ASecondProcessReadsTheWritesWhileMapped) {
    TempDir tmp;
    const qvString::CString path = tmp / "shared.dat";
    MemoryMappedFile map;
    ASSERT_TRUE(map.createFile(path, 4096).isOk());
    std::memcpy(map.data(), "seen by another process", 23);
    qvOS::ProcessOptions options;
    options.captureStdout = true;
    options.timeoutSeconds = 60;
    qvOS::ProcessResult result;
    ASSERT_TRUE(qvOS::ProcessManager::runSync(qvOS::AppMain::getBinaryPath("obrix_test_helper"),
                                              {"read-mapped", path, "23"}, options, result)
                    .isOk());
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.stdoutText, "seen by another process");
}

TEST(MemoryMappedFile, BadRequestsFailCleanlyAndLeaveNothingMapped) {
    TempDir tmp;
    MemoryMappedFile map;
    EXPECT_EQ(map.createFile(tmp / "zero", 0).code(), qvOS::OSError::InvalidArgument);
    EXPECT_EQ(map.createFile("", 10).code(), qvOS::OSError::InvalidArgument);
    EXPECT_EQ(map.openFile(tmp / "missing", false).code(), qvOS::OSError::NotFound);
    TempDir::write(tmp / "empty", "");
    EXPECT_EQ(map.openFile(tmp / "empty", false).code(), qvOS::OSError::InvalidArgument);
    EXPECT_TRUE(map.createFile(tmp / "no_dir/x", 10).isError());
    EXPECT_FALSE(map.isMapped());
    EXPECT_EQ(map.data(), nullptr);
    EXPECT_TRUE(map.flush().isOk());
}

TEST(MemoryMappedFile, AnonymousMemoryIsZeroedAndWritable) {
    MemoryMappedFile map;
    ASSERT_TRUE(map.createAnonymous(1 << 20).isOk());
    auto* bytes = static_cast<unsigned char*>(map.data());
    EXPECT_EQ(bytes[0] | bytes[(1 << 20) - 1], 0);
    bytes[12345] = 7;
    EXPECT_EQ(map.path(), "");
    EXPECT_TRUE(map.flush().isOk());
    map.unmap();
    EXPECT_FALSE(map.isMapped());
    EXPECT_EQ(map.createAnonymous(0).code(), qvOS::OSError::InvalidArgument);
}

} // namespace
