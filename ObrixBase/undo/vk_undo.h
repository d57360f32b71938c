/* Undo groups: the process-wide stack of current undo groups over the installed undo
   manager. Modelling code records its undo commands into the group on top of the stack; a
   null entry on top means that nothing is recorded now. Work is bracketed by push/pop pairs:

       VK_undo_push_new_group("Fillet", false);
       ...                      // commands record into VK_undo_get_group()
       VK_undo_pop_group(true); // an empty group is dropped from the history

   The stack holds 10 entries and is not bound-checked: pushing an 11th entry, or popping or
   reading the top of an empty stack, is the caller's fault. Single-threaded plain globals. */
#ifndef OBRIX_UNDO_VK_UNDO_H
#define OBRIX_UNDO_VK_UNDO_H

#include <stdbool.h>

#include "ObrixBase/ObrixExport.h"

#ifdef __cplusplus
namespace qvUndo {
class Group;
}
/* C++ callers see the manager's own group type. */
/** The undo manager's group, as C++ callers see it. */
typedef qvUndo::Group Undo_Group_s;
#else
typedef struct Undo_Group_s Undo_Group_s;
#endif

OBRIX_EXTERN_C_BEGIN

/** The top entry of the stack, which may be null. The stack must not be empty. */
OBRIX_API Undo_Group_s* VK_undo_get_group(void);
/** The number of entries on the stack. */
OBRIX_API int VK_undo_get_num_groups(void);
/** Opens a new group with `name` and `flag` (the group's mark) in the installed manager and
    returns it without pushing it; null when no manager is installed or creation is
    disabled. The manager owns the group. */
OBRIX_API Undo_Group_s* VK_undo_new_group(const char* name, bool flag);
/** Pushes `group` (null allowed: recording stops until it is popped). */
OBRIX_API void VK_undo_push_group(Undo_Group_s* group);
/** VK_undo_push_group(VK_undo_new_group(name, flag)). */
OBRIX_API void VK_undo_push_new_group(const char* name, bool flag);
/** Pops the top entry. When it is the manager's most recent group, holds no command and
    `discardIfEmpty` is true, the group is dropped from the history. */
OBRIX_API void VK_undo_pop_group(bool discardIfEmpty);
/** true pushes a null entry, so nothing is recorded; false pops it. */
OBRIX_API void VK_undo_creation_disable(bool disable);

/** The in-undo flag, which VK_undo_set_in_undo and VK_undo_set_in_redo both write; false at
    load. */
OBRIX_API bool VK_undo_in_undo(void);
/** Always false: VK_undo_set_in_redo records into the in-undo flag, which VK_undo_in_undo and
    VK_undo_is_active answer for both directions. */
OBRIX_API bool VK_undo_in_redo(void);
/** VK_undo_in_undo() or VK_undo_in_redo(). */
OBRIX_API bool VK_undo_is_active(void);
/** Writes the in-undo flag. */
OBRIX_API void VK_undo_set_in_undo(bool inUndo);
/** Writes the in-undo flag (see VK_undo_in_redo). */
OBRIX_API void VK_undo_set_in_redo(bool inRedo);

/** For operations that are only safe while recording: when there is no current group,
    reports "UNSAFE call <name>\n" through qvUndoReport. `file` and `line` are not used. */
OBRIX_API void VK_undo_call_supported(const char* name, const char* file, int line);
/** For operations that cannot be undone: when `report` is true, reports
    "UNSUPPORTED <name> from <file> line <line>\n" through qvUndoReport, with the part of `file`
    after its last backslash. */
OBRIX_API void VK_undo_call_unsupported(const char* name, bool report, const char* file, int line);

OBRIX_EXTERN_C_END

#ifdef __cplusplus
namespace qvObrixBase {

/// Makes a new undo manager, installs it (deleting the one installed before) and ties the
/// group stack to it: the manager's creation-disabled signal pushes and pops null entries,
/// and a group the manager deletes is replaced by null wherever it stands on the stack.
/// Call once at start; the stack is then empty.
OBRIX_API void undoInit();

/// The group on top of the stack: null when the stack is empty or its top entry is null
/// (nothing is recorded now).
OBRIX_API qvUndo::Group* undoGetGroup();

} // namespace qvObrixBase
#endif

#endif
