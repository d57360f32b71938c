// qvObrixBase::UndoCommand: the base of hand-written undo commands. A subclass performs its
// change in doCommand and takes it back in undoCommand, and uses the helpers here to declare
// the objects it changes and to ask for the redraws that must follow.
//
//     class MoveCmd : public qvObrixBase::UndoCommand { ... };
//     if (qvUndo::Group* g = qvObrixBase::undoGetGroup()) {
//         auto* c = new MoveCmd(g, "Move", ...);
//         if (c->doIt().isError()) delete c;
//     }
#ifndef OBRIX_UNDO_UNDOCOMMAND_H
#define OBRIX_UNDO_UNDOCOMMAND_H

#include "Base/qvUndo/Undo.h"
#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/state/redraw.h"

namespace qvObrixBase {

/// An undo command for `group` (null allowed, see qvUndo::Command::doIt). The forward and
/// backward steps and, when the command holds more than itself, getNumBytesUsed are the
/// subclass's.
class OBRIX_API UndoCommand : public qvUndo::Command {
public:
    /// A command named `name` (copied) for `group`; see qvUndo::Command for how a null group is
    /// handled.
    UndoCommand(qvUndo::Group* group, const char* name);
    ~UndoCommand() override;

    /// Declares `object` to the command's group; nothing when either is null.
    void declare(const void* object);
    /// Asks for the planes of `which` to be redrawn (with layer mark 1); a value outside
    /// ObrixRedraw asks for nothing.
    void redrawPlanes(ObrixRedraw which);
    /// Asks for everything to be redrawn.
    void setRedrawPending();
};

} // namespace qvObrixBase

#endif
