#include "ObrixBase/state/redraw.h"

#include <gtest/gtest.h>

#include "ObrixBase/state/rtb_init.h"

namespace {

int hookCalls = 0;
int planesSeen = 0;

// Behaves as the application's hook does: reads the pending state and resets it.
void drawPending() {
    ++hookCalls;
    planesSeen = redraw_get_pending_planes();
    redraw_reset_pending();
}

class RedrawScheduling : public ::testing::Test {
protected:
    void SetUp() override {
        redraw_reset_pending();
        hookCalls = planesSeen = 0;
    }
    void TearDown() override {
        rtbInit_redrawSetRedrawPending(nullptr);
        redraw_reset_pending();
    }
};

} // namespace

TEST_F(RedrawScheduling, TheSmallestLayerMarkWinsAndGoesWithZeroOrTheLastPendingPlane) {
    const int given[] = {5, 3, 7, 0, 4, -2};
    const int kept[] = {5, 3, 3, 0, 4, -2};
    for (int i = 0; i < 6; ++i) {
        redraw_add_pending_layers(given[i]);
        EXPECT_EQ(redraw_get_pending_layers(), kept[i]) << "after " << given[i];
    }
    redraw_reset_pending();

    redraw_add_model_planes();
    redraw_add_planes(0x2000, 4);
    EXPECT_EQ(redraw_get_pending_planes(), 0x29F8);
    EXPECT_EQ(redraw_get_pending_layers(), 1);
    redraw_remove_planes(0x9F8);
    EXPECT_EQ(redraw_get_pending_layers(), 1);
    redraw_remove_planes(0x2000);
    EXPECT_EQ(redraw_get_pending_planes(), 0);
    EXPECT_EQ(redraw_get_pending_layers(), 0);
    redraw_add_pending_layers(2);
    redraw_remove_planes(0); // nothing pending: the mark goes even so
    EXPECT_EQ(redraw_get_pending_layers(), 0);
}

TEST_F(RedrawScheduling, TheHookRunsWheneverRedrawsAreEnabledEvenWithNothingPending) {
    redraw_any_pending(); // no hook: nothing happens
    rtbInit_redrawSetRedrawPending(&drawPending);
    redraw_any_pending();
    EXPECT_EQ(hookCalls, 1);

    redraw_disable();
    redraw(0x9C0, 2);
    EXPECT_EQ(hookCalls, 1);
    EXPECT_EQ(redraw_get_pending_planes(), 0x9C0); // kept for later
    redraw_enable();
    redraw_enable(); // unmatched: the depth goes negative and redraws stay off
    redraw_all();
    EXPECT_EQ(hookCalls, 1);
    redraw_disable();
    redraw(0x1, 1);
    EXPECT_EQ(hookCalls, 2);
    EXPECT_EQ(planesSeen, 0x9C1);
    EXPECT_FALSE(redraw_get_pending_redraw_all());
}
