// RWBlock: references follow the views, the last release frees, and recycled headers are
// returned on every thread.
#include "ObrixBase/math/RWBlock.h"

#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/math/DoubleVec.h"

TEST(RWBlock, ReferencesCountViewsAndTheLastReleaseFrees) {
    DoubleVec v(4, 1.0);
    RWBlock* block = v.block();
    EXPECT_EQ(block->references(), 1u);
    {
        DoubleVec shallow(v);
        DoubleVec slice = v.slice(1, 2, 1);
        EXPECT_EQ(block->references(), 3u);
    }
    EXPECT_EQ(block->references(), 1u);
    RWBlock* empty = new RWBlock(0, 8);
    EXPECT_EQ(empty->data(), nullptr);
    RWBlock::release(empty); // ASan reports the leak if the block outlived this
}

TEST(RWBlock, RecycledHeadersLeakNothingOnAnyThread) {
    // More live blocks than the per-thread list keeps, released in one go, and a thread that
    // ends with a full list: LeakSanitizer reports any record left behind at exit.
    auto churn = [] {
        std::vector<DoubleVec> live;
        for (int i = 0; i < 600; ++i)
            live.emplace_back(3u, static_cast<double>(i));
        double total = 0.0;
        for (const DoubleVec& v : live)
            total += v(2);
        live.clear();
        DoubleVec again(2u, 1.5);
        return total + again(1);
    };
    EXPECT_EQ(churn(), 599.0 * 600.0 / 2 + 1.5);
    double onThread = 0.0;
    std::thread([&] { onThread = churn(); }).join();
    EXPECT_EQ(onThread, 599.0 * 600.0 / 2 + 1.5);
}
