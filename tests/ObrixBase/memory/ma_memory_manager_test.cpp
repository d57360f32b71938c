#include "ObrixBase/memory/ma_memory_manager.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/util/aa_debug.h"
#include "tests/support/ReportCapture.h"

namespace {

MA_Stats now() {
    MA_Stats s;
    MA_get_stats(&s);
    return s;
}

// The merged counts of one site, or all zero when it has none.
MA_Site_stats siteAt(const char* file, int line) {
    std::vector<MA_Site_stats> all(MA_get_site_stats(nullptr, 0) + 8);
    all.resize(MA_get_site_stats(all.data(), all.size()));
    for (const MA_Site_stats& s : all)
        if (std::strcmp(s.file, file) == 0 && s.line == line)
            return s;
    return MA_Site_stats{file, line, 0, 0, 0, 0};
}

} // namespace

TEST(MaMemoryManager, CountsFollowEveryKindOfAllocationAndRelease) {
    const MA_Stats before = now();
    MA_reset_peak();
    void* a = MA_malloc(100, __LINE__, __FILE__);
    void* zero = MA_malloc(0, __LINE__, __FILE__);
    auto* zeros = static_cast<unsigned char*>(MA_calloc(10, 8, __LINE__, __FILE__));
    char* copy = MA_strdup("twelve chars", __LINE__, __FILE__);
    ASSERT_TRUE(a && zero && zeros && copy);
    EXPECT_NE(zero, a);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a) % alignof(std::max_align_t), 0u);
    EXPECT_EQ(std::count(zeros, zeros + 80, 0), 80);
    EXPECT_STREQ(copy, "twelve chars");
    MA_Stats during = now();
    EXPECT_EQ(during.live_bytes - before.live_bytes, 100u + 0u + 80u + 13u);
    EXPECT_EQ(during.live_blocks - before.live_blocks, 4u);

    std::memset(a, 0x5A, 100);
    auto* grown = static_cast<unsigned char*>(MA_realloc(a, 5000, __LINE__, __FILE__));
    ASSERT_NE(grown, nullptr);
    EXPECT_EQ(grown[99], 0x5A);
    EXPECT_EQ(now().live_bytes - before.live_bytes, 5000u + 80u + 13u);
    EXPECT_EQ(now().peak_bytes - before.live_bytes, 5000u + 80u + 13u);

    // Impossible requests fail and count nothing, and leave the block they were to resize.
    EXPECT_EQ(MA_malloc(SIZE_MAX - 4, __LINE__, __FILE__), nullptr);
    EXPECT_EQ(MA_calloc(SIZE_MAX / 2, 3, __LINE__, __FILE__), nullptr);
    EXPECT_EQ(MA_realloc(grown, SIZE_MAX - 4, __LINE__, __FILE__), nullptr);
    EXPECT_EQ(MA_strdup(nullptr, __LINE__, __FILE__), nullptr);
    EXPECT_EQ(now().live_blocks - before.live_blocks, 4u);

    void* none = MA_realloc(nullptr, 7, __LINE__, __FILE__); // a null block: a new one
    EXPECT_EQ(now().live_bytes - before.live_bytes, 5000u + 80u + 13u + 7u);
    for (void* p : {static_cast<void*>(grown), zero, static_cast<void*>(zeros),
                    static_cast<void*>(copy), none})
        MA_free(p);
    MA_free(nullptr);
    const MA_Stats after = now();
    EXPECT_EQ(after.live_bytes, before.live_bytes);
    EXPECT_EQ(after.live_blocks, before.live_blocks);
    EXPECT_EQ(after.total_blocks - before.total_blocks, 6u);
    EXPECT_EQ(after.double_frees, before.double_frees);
    EXPECT_EQ(after.foreign_frees, before.foreign_frees);
}

TEST(MaMemoryManager, BlocksCrossBetweenTheAllocatorAndTheCHeap) {
    // (Blocks released with free() behind the accounting's back are the model test's.)
    const MA_Stats before = now();
    void* theirs = std::malloc(32);
    void* plain = std::malloc(8);
    // free() takes an accounted block: there is no header in front of it.
    void* ours = MA_malloc(48, __LINE__, __FILE__);
    ASSERT_EQ(MA_forget(ours), 1);
    EXPECT_EQ(MA_forget(ours), 0);
    std::free(ours);

    // MA_free takes a C heap block, counts it as foreign and leaves the live counts alone.
    rptSetDebugLevel(1);
    obrix::test::ReportCapture capture;
    MA_free(theirs);
    rptSetDebugLevel(0);
    EXPECT_EQ(now().foreign_frees, before.foreign_frees + 1);
    EXPECT_EQ(now().live_bytes, before.live_bytes);
    ASSERT_EQ(capture.reports().size(), 1u);
    EXPECT_EQ(capture.reports()[0].level, rptLevelDebug);

    // realloc of a C heap block adopts it.
    void* adopted = MA_realloc(plain, 24, __LINE__, __FILE__);
    EXPECT_EQ(now().live_bytes, before.live_bytes + 24);
    MA_free(adopted);
    EXPECT_EQ(now().foreign_frees, before.foreign_frees + 1);
}

TEST(MaMemoryManager, ADoubleFreeIsReportedAndLeftAlone) {
    obrix::test::ReportCapture capture;
    const MA_Stats before = now();
    void* block = MA_malloc(64, 4242, "double_free_site.cpp");
    void* other = MA_malloc(64, __LINE__, __FILE__);
    MA_free(block);
    MA_free(block); // must not reach the C heap: it would abort the process
    EXPECT_EQ(MA_realloc(block, 10, __LINE__, __FILE__), nullptr);
    MA_free(other);
    const MA_Stats after = now();
    EXPECT_EQ(after.double_frees - before.double_frees, 2u);
    EXPECT_EQ(after.foreign_frees, before.foreign_frees);
    EXPECT_EQ(after.live_blocks, before.live_blocks);
    EXPECT_EQ(after.live_bytes, before.live_bytes);
    char expected[160];
    std::snprintf(expected, sizeof expected,
                  "MA_free: block %p (from double_free_site.cpp:4242) was released already; "
                  "it is left alone\n",
                  block);
    ASSERT_EQ(capture.reports().size(), 2u);
    EXPECT_EQ(capture.reports()[0], (obrix::test::Report{rptLevelError, expected}));
}

TEST(MaMemoryManager, SitesKeepTheirOwnCountsAndMergeByFileName) {
    // Two pointers to one file name: two translation units naming the same header.
    static const char fileA[] = "site_test.cpp";
    static const char fileB[] = "site_test.cpp";
    std::vector<void*> blocks;
    for (int i = 0; i < 3; ++i)
        blocks.push_back(MA_malloc(10, 7, fileA));
    blocks.push_back(MA_malloc(5, 7, fileB));
    blocks.push_back(MA_malloc(1000, 8, fileA));
    MA_free(blocks[4]);
    MA_Site_stats seven = siteAt("site_test.cpp", 7);
    EXPECT_EQ(seven.live_bytes, 35u);
    EXPECT_EQ(seven.live_blocks, 4u);
    EXPECT_EQ(seven.total_blocks, 4u);
    MA_Site_stats eight = siteAt("site_test.cpp", 8);
    EXPECT_EQ(eight.live_blocks, 0u);
    EXPECT_EQ(eight.peak_bytes, 1000u);
    MA_reset_peak();
    EXPECT_EQ(siteAt("site_test.cpp", 8).peak_bytes, 0u);

    // The report lists only sites with live blocks, largest first.
    const MA_Stats before = now();
    if (before.live_blocks != 4 || before.double_frees || before.foreign_frees)
        GTEST_SKIP() << "other tests in this process left accounted blocks or bad frees";
    blocks.push_back(MA_malloc(64, 9, nullptr));
    AA_set_print_out(AA_OUTPUT_STDOUT, nullptr); // the one output that needs no entry
    testing::internal::CaptureStdout();
    EXPECT_EQ(MA_report(), 5u);
    std::fflush(stdout);
    const std::string text = testing::internal::GetCapturedStdout();
    AA_set_print_out(AA_OUTPUT_STDERR, nullptr);
    EXPECT_EQ(text, "Accounted memory: 99 bytes live in 5 blocks (peak 99 bytes in 5 blocks)\n"
                    "   (unknown):9: 64 bytes in 1 blocks (peak 64 bytes, 1 allocated)\n"
                    "   site_test.cpp:7: 35 bytes in 4 blocks (peak 35 bytes, 4 allocated)\n");
    for (size_t i = 0; i < blocks.size(); ++i)
        if (i != 4)
            MA_free(blocks[i]);
}

// Random allocations, resizes and releases through every door, thousands of blocks at a time,
// so that the table grows, is cleared of released entries and shrinks, against a model of
// what must be counted. Blocks released with free() stay counted until their address returns.
TEST(MaMemoryManager, CountsFollowAModelThroughGrowthAndClearOuts) {
    static const char file[] = "model_test.cpp";
    struct Block {
        size_t size;
        int line;
    };
    std::map<void*, Block> counted; // every block the accounting must count
    std::set<void*> freedBehind;    // counted, but released with free()
    std::minstd_rand random(5);
    const MA_Stats base = now();
    size_t doubles = 0, bytes = 0;
    auto drop = [&](void* p) {
        bytes -= counted[p].size;
        counted.erase(p);
    };
    auto adopt = [&](void* p, size_t size, int line) {
        if (freedBehind.erase(p)) // the address came back: the old block is retired
            drop(p);
        counted[p] = Block{size, line};
        bytes += size;
    };
    auto pick = [&]() -> void* {
        for (int tries = 0; tries < 8; ++tries) {
            auto it = std::next(counted.begin(), static_cast<long>(random() % counted.size()));
            if (!freedBehind.count(it->first))
                return it->first;
        }
        return nullptr;
    };
    auto check = [&](bool sites) {
        const MA_Stats s = now();
        ASSERT_EQ(s.live_blocks - base.live_blocks, counted.size());
        ASSERT_EQ(s.live_bytes - base.live_bytes, bytes);
        ASSERT_EQ(s.double_frees - base.double_frees, doubles);
        for (int line = 1; sites && line <= 3; ++line) {
            size_t siteBytes = 0;
            for (const auto& entry : counted)
                siteBytes += entry.second.line == line ? entry.second.size : 0;
            ASSERT_EQ(siteAt(file, line).live_bytes, siteBytes) << "line " << line;
        }
    };
    // Grow to thousands, drain to a few, grow again.
    for (const size_t target : {3000u, 40u, 2500u}) {
        for (int step = 0; step < 12000; ++step) {
            const unsigned op = random() % 16;
            const bool grow = counted.size() < target;
            void* p = counted.empty() ? nullptr : pick();
            const int line = 1 + static_cast<int>(random() % 3);
            const size_t size = random() % 300;
            if (!p || (grow ? op < 9 : op < 4)) {
                void* q = MA_malloc(size, line, file);
                ASSERT_NE(q, nullptr);
                adopt(q, size, line);
            } else if (op < 11) {
                drop(p);
                MA_free(p);
                if (op == 10) { // at once again: recognised, left alone
                    MA_free(p);
                    ++doubles;
                }
            } else if (op < 13) {
                drop(p);
                void* q = MA_realloc(p, size, line, file);
                ASSERT_NE(q, nullptr);
                adopt(q, size, line);
            } else if (op < 15) {
                ASSERT_EQ(MA_forget(p), 1);
                drop(p);
                std::free(p);
            } else {
                freedBehind.insert(p);
                std::free(p);
            }
            check(step % 1000 == 0);
        }
    }
    // A release among thousands of others is still recognised.
    void* first = nullptr;
    for (auto it = counted.begin(); it != counted.end();) {
        if (freedBehind.count(it->first)) {
            EXPECT_EQ(MA_forget(it->first), 1);
        } else {
            MA_free(it->first);
            first = first ? first : it->first;
        }
        bytes -= it->second.size;
        it = counted.erase(it);
    }
    ASSERT_NE(first, nullptr);
    MA_free(first);
    ++doubles;
    check(true);
}
