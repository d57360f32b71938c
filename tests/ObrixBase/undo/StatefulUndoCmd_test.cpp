#include "ObrixBase/undo/StatefulUndoCmd.h"

#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/ObrixBase/undo/UndoFixture.h"

namespace {

using qvObrixBase::StatefulUndoState;

int liveSnapshots = 0;

struct PointState : StatefulUndoState {
    PointState(double at, std::uint32_t size) : x(at), bytes(size) { ++liveSnapshots; }
    ~PointState() override { --liveSnapshots; }
    std::uint32_t getNumBytesUsed() const override { return bytes; }
    double x;
    std::uint32_t bytes;
};

// A one-coordinate object edited through snapshots.
struct EditablePoint : qvObrixBase::StatefulUndoCmd {
    EditablePoint() : StatefulUndoCmd("Move point") {
        stateChanged.connect([this] { ++changes; });
    }
    qv::Reference<StatefulUndoState> getState() override {
        ++snapshots;
        // A subclass sees the flags under their own names, already updated for this step.
        flagsAtSnapshot.push_back({initialized, inChange});
        return new PointState(x, snapshotBytes);
    }
    void setState(qv::Reference<StatefulUndoState> state) override {
        x = static_cast<PointState&>(*state).x;
        recording.push_back(qvObrixBase::undoGetGroup() != nullptr);
    }
    void moveTo(double to) {
        startChange();
        x = to;
        endChange();
    }
    double x = 0.0;
    int snapshots = 0, changes = 0;
    std::vector<bool> recording; // whether a group was current at each restore
    std::uint32_t snapshotBytes = 64;
    std::vector<std::pair<bool, bool>> flagsAtSnapshot; // (initialized, inChange)
};

class StatefulUndo : public obrix::test::UndoFixture {
protected:
    void TearDown() override {
        UndoFixture::TearDown();
        EXPECT_EQ(liveSnapshots, 0); // the manager's death released every snapshot
    }
};

} // namespace

TEST_F(StatefulUndo, UndoRestoresTheBeforeStateAndRedoTheAfterState) {
    EditablePoint p;
    VK_undo_push_new_group("Move", false);
    p.moveTo(5.0);
    VK_undo_pop_group(true);
    EXPECT_EQ(p.snapshots, 2);
    EXPECT_EQ(p.changes, 1); // recording the after-state applies it once
    EXPECT_EQ(manager().getGroup(-1)->getNumCommands(), 2);

    VK_undo_push_new_group("Move again", false);
    p.moveTo(7.0);
    VK_undo_pop_group(true);

    ASSERT_TRUE(manager().undo().isOk());
    EXPECT_EQ(p.x, 5.0);
    ASSERT_TRUE(manager().undo().isOk());
    EXPECT_EQ(p.x, 0.0);
    ASSERT_TRUE(manager().redo().isOk());
    EXPECT_EQ(p.x, 5.0);
    EXPECT_EQ(p.changes, 5);
    // Undo and redo disable recording while they restore; recording itself does not.
    EXPECT_EQ(p.recording, (std::vector<bool>{true, true, false, false, false}));
    EXPECT_EQ(manager().getNumGroups(), 2);
    EXPECT_EQ(VK_undo_get_num_groups(), 0);
}

TEST_F(StatefulUndo, InitializeMarksTheGroupAndRecordsTheFirstState) {
    EditablePoint p;
    p.x = 3.0;
    VK_undo_push_new_group("Create", false);
    p.initialize();
    p.moveTo(4.0);
    VK_undo_pop_group(true);
    EXPECT_TRUE(p.isInitialized());
    using Flags = std::pair<bool, bool>;
    EXPECT_EQ(p.flagsAtSnapshot, (std::vector<Flags>{{true, false}, {true, true}, {true, false}}));
    EXPECT_TRUE(manager().getGroup(-1)->isMarked());
    ASSERT_TRUE(manager().undo().isOk());
    EXPECT_EQ(p.x, 3.0);
}

TEST_F(StatefulUndo, NothingIsRecordedWhileCreationIsDisabled) {
    EditablePoint p;
    VK_undo_push_new_group("g", false);
    VK_undo_creation_disable(true);
    p.startChange();
    EXPECT_TRUE(p.isInChange());
    p.x = 2.0;
    p.endChange();
    EXPECT_FALSE(p.isInChange());
    p.initialize();
    VK_undo_creation_disable(false);
    EXPECT_EQ(p.snapshots, 0);
    EXPECT_EQ(VK_undo_get_group()->getNumCommands(), 0);
    EXPECT_FALSE(VK_undo_get_group()->isMarked());
}

TEST_F(StatefulUndo, CommandsThatOutliveTheirObjectRestoreNothing) {
    auto p = std::make_unique<EditablePoint>();
    VK_undo_push_new_group("Move", false);
    p->moveTo(1.0);
    VK_undo_pop_group(true);
    p.reset();
    EXPECT_EQ(liveSnapshots, 2); // still kept by the history
    EXPECT_TRUE(manager().undo().isOk());
    EXPECT_TRUE(manager().redo().isOk());
}

TEST_F(StatefulUndo, TheHistoryLimitTrimsByGroupsAndSnapshotBytesWithoutDanglingEntries) {
    EditablePoint p;
    VK_undo_push_new_group("outer", false); // stays on the stack while newer groups come
    p.moveTo(1.0);
    const std::uint64_t bytes64 = manager().getGroup(-1)->getNumBytesUsed();
    manager().setMaxGroups(2);
    for (double x : {2.0, 3.0}) {
        VK_undo_push_new_group("inner", false);
        p.moveTo(x);
        VK_undo_pop_group(true);
    }
    EXPECT_EQ(manager().getNumGroups(), 2);
    EXPECT_EQ(liveSnapshots, 4); // the outer group's two went with it
    EXPECT_EQ(qvObrixBase::undoGetGroup(), nullptr);
    p.moveTo(9.0); // recording into the trimmed group is now inert
    EXPECT_EQ(liveSnapshots, 4);

    // Each command counts its snapshot's bytes plus its own size.
    p.snapshotBytes = 1064;
    VK_undo_push_new_group("big", false);
    p.moveTo(4.0);
    VK_undo_pop_group(true);
    EXPECT_EQ(manager().getGroup(-1)->getNumBytesUsed(), bytes64 + 2000);
    manager().setMaxGroups(0);
    manager().setMaxBytes(bytes64 + 2000);
    EXPECT_EQ(manager().getNumGroups(), 1);
    EXPECT_EQ(liveSnapshots, 2);
}
