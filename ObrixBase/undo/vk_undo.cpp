#include "ObrixBase/undo/vk_undo.h"

#include <cstring>

#include "Base/qvUndo/Undo.h"

namespace {

constexpr int stackSize = 10;

qvUndo::Group* groupStack[stackSize] = {};
int groupCount = 0;
bool inUndo = false;
bool inRedo = false; // never written: see VK_undo_set_in_redo

// A deleted group must not be found on the stack; its slots become "record nothing". The
// count stays, so the caller's pops still match its pushes.
void purgeDeletedGroup(qvUndo::Group* group) {
    for (auto& slot : groupStack)
        if (slot == group)
            slot = nullptr;
}

} // namespace

namespace qvObrixBase {

void undoInit() {
    qvUndo::Manager* manager = qvUndo::newManager();
    manager->creationDisabled.connect(&VK_undo_creation_disable);
    manager->groupDeleted.connect(&purgeDeletedGroup);
    qvUndo::installManager(manager);
}

qvUndo::Group* undoGetGroup() {
    return groupCount == 0 ? nullptr : groupStack[groupCount - 1];
}

} // namespace qvObrixBase

Undo_Group_s* VK_undo_get_group(void) {
    return groupStack[groupCount - 1];
}

int VK_undo_get_num_groups(void) {
    return groupCount;
}

Undo_Group_s* VK_undo_new_group(const char* name, bool flag) {
    qvUndo::Manager* manager = qvUndo::getInstalledManager();
    return manager ? manager->openGroup(name, flag) : nullptr;
}

void VK_undo_push_group(Undo_Group_s* group) {
    groupStack[groupCount++] = group;
}

void VK_undo_push_new_group(const char* name, bool flag) {
    VK_undo_push_group(VK_undo_new_group(name, flag));
}

void VK_undo_pop_group(bool discardIfEmpty) {
    // The slot is left as it is: only the count says what is on the stack.
    qvUndo::Group* group = groupStack[--groupCount];
    if (!group)
        return;
    qvUndo::Manager* manager = qvUndo::getInstalledManager();
    if (manager && manager->getGroup(-1) == group && discardIfEmpty && group->getNumCommands() == 0)
        manager->dropLastGroup();
}

void VK_undo_creation_disable(bool disable) {
    if (disable)
        VK_undo_push_group(nullptr);
    else
        VK_undo_pop_group(false);
}

bool VK_undo_in_undo(void) {
    return inUndo;
}

bool VK_undo_in_redo(void) {
    return inRedo;
}

bool VK_undo_is_active(void) {
    return inUndo || inRedo;
}

void VK_undo_set_in_undo(bool value) {
    inUndo = value;
}

void VK_undo_set_in_redo(bool value) {
    // Callers test VK_undo_in_undo() for "replaying history" in either direction, so the
    // redo flag is folded into it.
    inUndo = value;
}

void VK_undo_call_supported(const char* name, const char* /*file*/, int /*line*/) {
    if (!qvObrixBase::undoGetGroup())
        qvUndoReport("UNSAFE call %s\n", name ? name : "");
}

void VK_undo_call_unsupported(const char* name, bool report, const char* file, int line) {
    if (!report)
        return;
    const char* base = file ? std::strrchr(file, '\\') : nullptr;
    qvUndoReport("UNSUPPORTED %s from %s line %d\n", name ? name : "",
                 base ? base + 1 : (file ? file : ""), line);
}
