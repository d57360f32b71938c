#include "ObrixBase/undo/StatefulUndoCmd.h"

#include <memory>
#include <utility>

#include "Base/qvUndo/Undo.h"
#include "ObrixBase/undo/vk_undo.h"

namespace qvObrixBase {
namespace {

using Snapshot = qv::Reference<StatefulUndoState>;

// One snapshot in the history. A before-snapshot acts on undo, an after-snapshot on do and
// redo; undoing a group runs its commands in reverse, so the before-snapshot of a
// startChange/endChange pair is applied last, and redoing runs them forward, so the
// after-snapshot is.
class StateCommand final : public qvUndo::Command {
public:
    StateCommand(qvUndo::Group* group, const char* name, Snapshot snapshot, bool isBefore)
        : Command(group, name), snapshot_(std::move(snapshot)), isBefore_(isBefore) {}

    qvUtil::Error doCommand() override {
        if (!isBefore_)
            restore.send(snapshot_);
        return {};
    }

    qvUtil::Error undoCommand() override {
        if (isBefore_)
            restore.send(snapshot_);
        return {};
    }

    std::uint32_t getNumBytesUsed() const override {
        const std::uint32_t own = static_cast<std::uint32_t>(sizeof(StateCommand));
        return snapshot_ ? snapshot_->getNumBytesUsed() + own : own;
    }

    /// Carries the snapshot to the StatefulUndoCmd that recorded it, while that lives.
    qvRTB::Signal<Snapshot> restore;

private:
    Snapshot snapshot_;
    bool isBefore_;
};

} // namespace

StatefulUndoState::~StatefulUndoState() = default;

StatefulUndoCmd::StatefulUndoCmd(const char* name) : name_(name) {
}

StatefulUndoCmd::~StatefulUndoCmd() = default;

void StatefulUndoCmd::initialize() {
    initialized = true;
    if (qvUndo::Group* group = undoGetGroup()) {
        group->setMarked(true);
        record(getState(), true);
    }
}

void StatefulUndoCmd::startChange() {
    inChange = true;
    if (undoGetGroup())
        record(getState(), true);
}

void StatefulUndoCmd::endChange() {
    inChange = false;
    if (undoGetGroup())
        record(getState(), false);
}

void StatefulUndoCmd::record(Snapshot snapshot, bool isBefore) {
    // getState may itself have changed the stack; ask again.
    qvUndo::Group* group = undoGetGroup();
    if (!group)
        return;
    auto command =
        std::make_unique<StateCommand>(group, name_.c_str(), std::move(snapshot), isBefore);
    command->restore.connect(client_, [this](Snapshot s) { setState_(std::move(s)); });
    const qvUtil::Error error = command->doIt();
    if (error.isOk())
        static_cast<void>(command.release()); // the group owns it now
    else
        qvUndoReport("%s\n", error.message().c_str());
}

void StatefulUndoCmd::setState_(Snapshot snapshot) {
    setState(std::move(snapshot));
    stateChanged.send();
}

} // namespace qvObrixBase
