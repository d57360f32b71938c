#include "Base/qvOS/SystemInfo.h"

#include <gtest/gtest.h>

#include "Base/qvOS/File.h"
#include "Base/qvOS/Filename.h"

namespace {

TEST(SystemInfo, FiguresAreConsistentAndTheTempDirectoryExists) {
    qvOS::MemoryStatus m;
    ASSERT_TRUE(qvOS::querySystemMemory(m).isOk());
    EXPECT_GE(m.physicalTotal, std::uint64_t(64) << 20);
    EXPECT_GT(m.physicalAvailable, 0u);
    EXPECT_LE(m.physicalAvailable, m.physicalTotal);
    EXPECT_GT(m.virtualTotal, 0u);
    EXPECT_LE(m.virtualAvailable, m.virtualTotal);
    EXPECT_LE(m.swapFree, m.swapTotal);

    std::uint64_t freeBytes = 0, total = 0;
    ASSERT_TRUE(qvOS::queryDiskSpace(qvOS::tempDirectory(), freeBytes, total).isOk());
    EXPECT_GT(total, 0u);
    EXPECT_LE(freeBytes, total);
    EXPECT_EQ(qvOS::queryDiskSpace("", freeBytes, total).code(), qvOS::OSError::InvalidArgument);
    EXPECT_EQ(qvOS::queryDiskSpace(qvOS::Filename::join(qvOS::tempDirectory(), "no/such/dir"),
                                   freeBytes, total)
                  .code(),
              qvOS::OSError::NotFound);

    // The page size is a power of two; the temporary directory exists, without a trailing
    // separator.
    std::uint64_t page = qvOS::pageSize();
    EXPECT_GE(page, 4096u);
    EXPECT_EQ(page & (page - 1), 0u);
    qvString::CString tmp = qvOS::tempDirectory();
    ASSERT_FALSE(tmp.empty());
    EXPECT_FALSE(tmp.size() > 3 && qvOS::Filename::isSeparator(tmp.back())) << tmp;
    qvOS::FileInfo info;
    ASSERT_TRUE(qvOS::File::query(tmp, info).isOk());
    EXPECT_EQ(info.type, qvOS::FileType::Directory);
}

} // namespace
