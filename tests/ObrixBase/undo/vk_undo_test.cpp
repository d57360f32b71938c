#include "ObrixBase/undo/vk_undo.h"

#include <gtest/gtest.h>

#include "ObrixBase/undo/UndoCommand.h"
#include "tests/ObrixBase/undo/UndoFixture.h"
#include "tests/support/ReportCapture.h"

namespace {

using UndoGroups = obrix::test::UndoFixture;

class NoOp : public qvObrixBase::UndoCommand {
public:
    using UndoCommand::UndoCommand;
    qvUtil::Error doCommand() override { return {}; }
    qvUtil::Error undoCommand() override { return {}; }
};

} // namespace

TEST_F(UndoGroups, WithoutAManagerNewGroupsAreNullAndPushingOneStopsRecording) {
    qvUndo::installManager(nullptr);
    EXPECT_EQ(VK_undo_new_group("g", false), nullptr);
    VK_undo_push_new_group("g", false);
    EXPECT_EQ(VK_undo_get_num_groups(), 1);
    EXPECT_EQ(VK_undo_get_group(), nullptr);
    EXPECT_EQ(qvObrixBase::undoGetGroup(), nullptr);
    VK_undo_pop_group(true);
    EXPECT_EQ(qvObrixBase::undoGetGroup(), nullptr); // empty stack
}

TEST_F(UndoGroups, PopDropsOnlyTheManagersNewestGroupAndOnlyWhenEmptyAndAsked) {
    VK_undo_push_new_group("empty", true);
    EXPECT_TRUE(VK_undo_get_group()->isMarked());
    VK_undo_pop_group(true);
    EXPECT_EQ(manager().getNumGroups(), 0);

    VK_undo_push_new_group("kept because not asked", false);
    VK_undo_pop_group(false);
    VK_undo_push_new_group("kept because it holds a command", false);
    ASSERT_TRUE((new NoOp(VK_undo_get_group(), "c"))->doIt().isOk());
    VK_undo_pop_group(true);
    EXPECT_EQ(manager().getNumGroups(), 2);

    // A group opened after the pushed one is the newest, so the popped one stays.
    VK_undo_push_new_group("outer", false);
    manager().openGroup("later", false);
    VK_undo_pop_group(true);
    EXPECT_EQ(manager().getNumGroups(), 4);
    EXPECT_EQ(manager().getGroup(-2)->getName(), "outer");
}

TEST_F(UndoGroups, TheManagersCreationDisablingPushesAndPopsNullEntries) {
    VK_undo_push_new_group("g", false);
    qvUndo::Group* g = VK_undo_get_group();
    manager().disableCreation(true);
    EXPECT_EQ(VK_undo_get_num_groups(), 2);
    EXPECT_EQ(qvObrixBase::undoGetGroup(), nullptr);
    manager().disableCreation(false);
    EXPECT_EQ(VK_undo_get_num_groups(), 1);
    EXPECT_EQ(qvObrixBase::undoGetGroup(), g);
}

TEST_F(UndoGroups, AGroupTheManagerDeletesBecomesNullInEverySlotItHeld) {
    VK_undo_push_new_group("a", false);
    qvUndo::Group* a = VK_undo_get_group();
    VK_undo_push_new_group("b", false);
    VK_undo_push_group(a);
    manager().setMaxGroups(1);
    EXPECT_EQ(VK_undo_get_num_groups(), 3);
    EXPECT_EQ(VK_undo_get_group(), nullptr);
    VK_undo_pop_group(true);
    EXPECT_NE(VK_undo_get_group(), nullptr); // b survives
    VK_undo_pop_group(true);                 // b was empty and newest: dropped
    EXPECT_EQ(manager().getNumGroups(), 0);
    EXPECT_EQ(VK_undo_get_group(), nullptr); // slot 0 held a
}

TEST_F(UndoGroups, SettingInRedoRaisesTheInUndoFlagOnly) {
    VK_undo_set_in_redo(true);
    EXPECT_TRUE(VK_undo_in_undo());
    EXPECT_FALSE(VK_undo_in_redo());
    EXPECT_TRUE(VK_undo_is_active());
    VK_undo_set_in_undo(false);
    EXPECT_FALSE(VK_undo_is_active());
}

TEST_F(UndoGroups, MisuseReportsHaveTheirExactTexts) {
    obrix::test::ReportCapture capture;
    VK_undo_call_supported("trim", "x.cpp", 1);
    VK_undo_push_new_group("g", false);
    VK_undo_call_supported("trim", "x.cpp", 1); // a group is current: safe, silent
    VK_undo_call_unsupported("fillet", true, "C:\\src\\model\\fillet.cpp", 42);
    VK_undo_call_unsupported("blend", true, "src/blend.cpp", 7);
    VK_undo_call_unsupported("quiet", false, "q.cpp", 3);
    EXPECT_EQ(capture.texts(), (std::vector<std::string>{
                                   "UNSAFE call trim\n",
                                   "UNSUPPORTED fillet from fillet.cpp line 42\n",
                                   "UNSUPPORTED blend from src/blend.cpp line 7\n",
                               }));
}
