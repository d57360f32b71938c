#include "ObrixBase/undo/UndoCommand.h"

namespace qvObrixBase {

UndoCommand::UndoCommand(qvUndo::Group* group, const char* name) : Command(group, name) {
}

UndoCommand::~UndoCommand() = default;

void UndoCommand::declare(const void* object) {
    if (object && getGroup())
        getGroup()->declare(object);
}

void UndoCommand::redrawPlanes(ObrixRedraw which) {
    switch (which) {
    case ObrixRedrawActivePlanes:
        redraw_add_active_planes();
        break;
    case ObrixRedrawModelPlanes:
        redraw_add_model_planes();
        break;
    case ObrixRedrawTemplatePlanes:
        redraw_add_template_planes();
        break;
    case ObrixRedrawWindowPlanes:
        redraw_add_window_planes();
        break;
    }
}

void UndoCommand::setRedrawPending() {
    redraw_add_all();
}

} // namespace qvObrixBase
