// Snapshot-based undo. A small class derived from StatefulUndoCmd (the base is abstract, with
// a protected destructor) is kept in or beside an editable object: it takes a snapshot of the
// object's state before and after each change and records both into the current undo group,
// so that undo puts the object back into the before-state and redo into the after-state. The
// subclass says how to take and apply a snapshot:
//
//     class CurveEdit : public qvObrixBase::StatefulUndoCmd {
//         qv::Reference<qvObrixBase::StatefulUndoState> getState() override;  // copy out
//         void setState(qv::Reference<qvObrixBase::StatefulUndoState>) override; // copy in
//     };
//     edit.startChange(); curve.move(...); edit.endChange();
//
// Nothing is recorded while there is no current group (qvObrixBase::undoGetGroup() is null).
// The recorded commands live as long as the undo history keeps their group, which may be
// longer than the StatefulUndoCmd: once it is destroyed they restore nothing.
#ifndef OBRIX_UNDO_STATEFULUNDOCMD_H
#define OBRIX_UNDO_STATEFULUNDOCMD_H

#include <cstdint>

#include "Base/qv/Reference.h"
#include "Base/qvRTB/Signal.h"
#include "Base/qvString/CString.h"
#include "ObrixBase/ObrixExport.h"

namespace qvObrixBase {

/// A snapshot of an object's state, shared by reference count. Snapshots are kept by the undo
/// history and must not change once taken.
class OBRIX_API StatefulUndoState : public qv::ReferenceCount {
public:
    StatefulUndoState() = default;
    /// Copies nothing of the count: the copy is a new snapshot with its own references.
    StatefulUndoState(const StatefulUndoState&) = default;
    /// Keeps this snapshot's reference count; subclasses copy their own state.
    StatefulUndoState& operator=(const StatefulUndoState&) = default;
    ~StatefulUndoState() override;

    /// The memory the snapshot holds, in bytes; the undo history's byte limit counts it.
    virtual std::uint32_t getNumBytesUsed() const = 0;
};

/// Records before- and after-snapshots of an object into the current undo group and applies
/// them again on undo and redo. Neither copied nor moved: recorded commands refer to it.
class OBRIX_API StatefulUndoCmd {
public:
    /// `name` names the recorded commands (null gives the empty name).
    explicit StatefulUndoCmd(const char* name);
    StatefulUndoCmd(const StatefulUndoCmd&) = delete;
    StatefulUndoCmd& operator=(const StatefulUndoCmd&) = delete;

    /// For a new object: marks it initialised and, when there is a current group, sets the
    /// group's mark and records the object's present state as a before-state, so that
    /// undoing the group puts the object back as it was made.
    void initialize();
    /// Before a change: marks the change as under way and, when there is a current group,
    /// records the present state as the before-state.
    void startChange();
    /// After a change: marks it as over and, when there is a current group, records the
    /// present state as the after-state. Recording performs the command once, so the object
    /// is given that state through setState at once and stateChanged is sent.
    void endChange();

    /// A new snapshot of the object's present state.
    virtual qv::Reference<StatefulUndoState> getState() = 0;
    /// Makes the object's state equal to `state`, a snapshot from getState.
    virtual void setState(qv::Reference<StatefulUndoState> state) = 0;

    /// True once initialize has been called, whether or not anything was recorded.
    bool isInitialized() const noexcept { return initialized; }
    /// True between startChange and endChange, whether or not anything was recorded.
    bool isInChange() const noexcept { return inChange; }
    /// The name the recorded commands carry.
    const qvString::CString& getName() const noexcept { return name_; }

private:
    // Recorded commands reach this object through connections made via this client, so the
    // history cannot call into an object that has died.
    qvRTB::SignalClient client_;

public:
    /// Sent after every restore from undo, redo or recording, once setState has returned.
    qvRTB::SignalVoid stateChanged;

protected:
    /// Not virtual: the object is destroyed through its own type, never through this base.
    ~StatefulUndoCmd();

private:
    void record(qv::Reference<StatefulUndoState> snapshot, bool isBefore);
    void setState_(qv::Reference<StatefulUndoState> snapshot);

    qvString::CString name_;

protected:
    /// Set by initialize and never cleared; kept for the subclass, which may read or reset it.
    bool initialized = false;
    /// Set by startChange, cleared by endChange; kept for the subclass, which may read it to
    /// tell a change in progress from a restore.
    bool inChange = false;
};

} // namespace qvObrixBase

#endif
