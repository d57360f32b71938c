#include "ObrixBase/state/redraw.h"

#include "ObrixBase/state/rtb_init.h"

namespace {

// Display plane sets, as bit masks over the pending planes.
constexpr int activePlanes = 0x9C0;
constexpr int modelPlanes = 0x9F8;
constexpr int templatePlanes = 0x9FF;
constexpr int windowPlanes = 0xFFF;

int pendingPlanes = 0;
int pendingLayers = 0; // 0: no layer mark
bool pendingRedrawAll = false;
int disableDepth = 0;
bool updatePending = false;

// Registered with the other hooks, but kept beside its only caller.
void (*redrawHook)(void) = nullptr;

} // namespace

void rtbInit_redrawSetRedrawPending(void (*proc)(void)) {
    redrawHook = proc;
}

void redraw_add_pending_planes(int mask) {
    pendingPlanes |= mask;
}

void redraw_add_pending_layers(int n) {
    if (pendingLayers == 0 || n < pendingLayers)
        pendingLayers = n;
}

void redraw_add_planes(int mask, int n) {
    redraw_add_pending_planes(mask);
    redraw_add_pending_layers(n);
}

void redraw_add_active_planes(void) {
    redraw_add_planes(activePlanes, 1);
}

void redraw_add_model_planes(void) {
    redraw_add_planes(modelPlanes, 1);
}

void redraw_add_template_planes(void) {
    redraw_add_planes(templatePlanes, 1);
}

void redraw_add_window_planes(void) {
    redraw_add_planes(windowPlanes, 1);
}

void redraw_add_all(void) {
    pendingRedrawAll = true;
}

void redraw_remove_planes(int mask) {
    pendingPlanes &= ~mask;
    if (pendingPlanes == 0)
        pendingLayers = 0;
}

void redraw_remove_redraw_all(void) {
    pendingRedrawAll = false;
}

void redraw_reset_pending(void) {
    pendingPlanes = 0;
    pendingLayers = 0;
    pendingRedrawAll = false;
}

int redraw_get_pending_planes(void) {
    return pendingPlanes;
}

int redraw_get_pending_layers(void) {
    return pendingLayers;
}

bool redraw_get_pending_redraw_all(void) {
    return pendingRedrawAll;
}

void redraw_disable(void) {
    ++disableDepth;
}

void redraw_enable(void) {
    --disableDepth;
}

void redraw_any_pending(void) {
    if (disableDepth == 0 && redrawHook)
        redrawHook();
}

void redraw(int mask, int n) {
    redraw_add_planes(mask, n);
    redraw_any_pending();
}

void redraw_all(void) {
    redraw_add_all();
    redraw_any_pending();
}

void qvObrixBase_set_update_pending(void) {
    updatePending = true;
}

void qvObrixBase_clear_update_pending(void) {
    updatePending = false;
}

bool qvObrixBase_get_update_pending(void) {
    return updatePending;
}
