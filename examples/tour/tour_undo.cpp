// Undo: a label edited through a StatefulUndoCmd, undone and redone through the installed
// undo manager, with the redraw requests that each step leaves for the application's hook.
#include <cstdio>
#include <string>

#include "ObrixBase/ObrixBase.h"
#include "examples/tour/tour.h"

namespace {

struct LabelState : qvObrixBase::StatefulUndoState {
    explicit LabelState(std::string t) : text(std::move(t)) {}
    std::uint32_t getNumBytesUsed() const override {
        return static_cast<std::uint32_t>(sizeof(*this) + text.capacity());
    }
    std::string text;
};

// A label whose every restored state asks for the model planes to be redrawn.
class Label : public qvObrixBase::StatefulUndoCmd {
public:
    Label() : StatefulUndoCmd("Edit label") {
        stateChanged.connect([] { redraw_add_model_planes(); });
    }
    ~Label() = default;

    qv::Reference<qvObrixBase::StatefulUndoState> getState() override {
        return new LabelState(text);
    }
    void setState(qv::Reference<qvObrixBase::StatefulUndoState> state) override {
        text = static_cast<LabelState&>(*state).text;
    }

    std::string text;
};

// The name of a pending plane set: the four sets the redraw calls add, or a mixture.
const char* planeSetName(int planes) {
    switch (planes) {
    case 0:
        return "no planes";
    case 0x9C0:
        return "the active planes";
    case 0x9F8:
        return "the model planes";
    case 0x9FF:
        return "the template planes";
    case 0xFFF:
        return "the window planes";
    default:
        return "a mixture of planes";
    }
}

// Stands in for the application's redraw: shows what is pending, then clears it.
void showRedraw() {
    const int planes = redraw_get_pending_planes();
    std::printf("  redraw hook: %s (plane bits 0x%X), from layer mark %d, %s\n",
                planeSetName(planes), static_cast<unsigned>(planes), redraw_get_pending_layers(),
                redraw_get_pending_redraw_all() ? "everything" : "not everything");
    redraw_reset_pending();
}

} // namespace

void tourUndo() {
    tourHeading("Undo commands and redraw requests");
    qvObrixBase::undoInit();
    rtbInit_redrawSetRedrawPending(&showRedraw);
    qvUndo::Manager& history = *qvUndo::getInstalledManager();

    Label label;
    label.text = "Bracket";
    VK_undo_push_new_group("Rename bracket", false);
    label.startChange();
    label.text = "Bracket, left";
    label.endChange();
    VK_undo_pop_group(true);
    std::printf("edited:   \"%s\" (%d group, %d commands, %llu bytes of history)\n",
                label.text.c_str(), history.getNumGroups(), history.getGroup(-1)->getNumCommands(),
                static_cast<unsigned long long>(history.getNumBytesUsed()));
    redraw_any_pending();

    history.undo();
    std::printf("undone:   \"%s\"\n", label.text.c_str());
    redraw_any_pending();

    history.redo();
    std::printf("redone:   \"%s\"\n", label.text.c_str());
    redraw_any_pending();

    // Nothing is recorded under a null group: this change cannot be undone.
    VK_undo_creation_disable(true);
    label.startChange();
    label.text = "Bracket, right";
    label.endChange();
    VK_undo_creation_disable(false);
    std::printf("unrecorded change: \"%s\", still %d group in the history\n", label.text.c_str(),
                history.getNumGroups());

    rtbInit_redrawSetRedrawPending(nullptr);
    qvUndo::installManager(nullptr);
}
