// UndoCommand: the redraw selectors map to their planes and nothing else, and declare reaches
// the command's own group only.
#include "ObrixBase/undo/UndoCommand.h"

#include <gtest/gtest.h>

#include "tests/ObrixBase/undo/UndoFixture.h"

namespace {

struct Probe : qvObrixBase::UndoCommand {
    using UndoCommand::UndoCommand;
    qvUtil::Error doCommand() override { return {}; }
    qvUtil::Error undoCommand() override { return {}; }
};

class UndoCommandTest : public obrix::test::UndoFixture {};

} // namespace

TEST_F(UndoCommandTest, AsksForThePlanesOfItsRedrawSelectorAndNothingForOthers) {
    Probe probe(nullptr, "probe");
    // C callers may pass any int: values far outside the enumerators select nothing too.
    const int selector[] = {0, 1, 2, 3, 4, 5, 99, -1};
    const int expected[] = {0, 0x9C0, 0x9F8, 0x9FF, 0xFFF, 0, 0, 0};
    for (int i = 0; i < 8; ++i) {
        redraw_reset_pending();
        probe.redrawPlanes(static_cast<ObrixRedraw>(selector[i]));
        EXPECT_EQ(redraw_get_pending_planes(), expected[i]) << selector[i];
        EXPECT_EQ(redraw_get_pending_layers(), expected[i] ? 1 : 0) << selector[i];
    }
    probe.setRedrawPending();
    EXPECT_TRUE(redraw_get_pending_redraw_all());
}

TEST_F(UndoCommandTest, DeclaresToItsOwnGroupAndIgnoresNulls) {
    int object = 0, other = 0;
    Probe loose(nullptr, "loose");
    loose.declare(&object); // no group: nothing to declare to, and no crash

    VK_undo_push_new_group("Edit", false);
    qvUndo::Group* group = VK_undo_get_group();
    ASSERT_NE(group, nullptr);
    auto* command = new Probe(group, "edit");
    command->declare(&object);
    command->declare(nullptr);
    command->declare(&object);
    ASSERT_TRUE(command->doIt().isOk()); // the group owns it now
    EXPECT_EQ(group->getDeclared(), std::vector<const void*>{&object});
    EXPECT_FALSE(group->isDeclared(&other));
    VK_undo_pop_group(true);
}
