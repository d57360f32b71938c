/* Warnings and QA assertions of the C interface. A warning is a box with message lines and a
   row of buttons, shown by the helper program veskoWarning; the call waits for the user and
   returns the index of the button pressed. QA assertions stop a test installation (one with
   VESKO_QA or VESKO_DEBUG in its environment) with a request to report a numbered bug. */
#ifndef OBRIX_UTIL_VK_WARNING_H
#define OBRIX_UTIL_VK_WARNING_H

#include <stdbool.h>

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/** The codes of a warning described in an argument list. Each code but VK_WARN_END is followed
    by one `const char *` (null counts as ""); any other code is skipped with its argument. */
typedef enum VK_Warn_Code {
    VK_WARN_LINE = 0,   /**< add a message line */
    VK_WARN_BUTTON = 1, /**< add a button label */
    VK_WARN_KIND = 2,   /**< the kind, chosen by name: "warning" (also ""), "error", "info",
                             "question"; it picks the icon, unknown names show "warning" */
    VK_WARN_TITLE = 3,  /**< the title of the window ("Warning" when empty) */
    VK_WARN_END = 4     /**< end of the description; takes no argument */
} VK_Warn_Code;

/** Answer of a warning that was dismissed without a button: the window was closed, Escape was
    pressed, or the terminal reached its end. */
#define VK_WARNING_CLOSED (-1)
/** Answer of a warning that could not be shown: the helper program is missing, crashed or
    gave no answer. An rptError report carrying the warning's text says why. */
#define VK_WARNING_FAILED (-2)

/** Shows the warning described by (code, text) pairs up to VK_WARN_END and waits for the user.
    Returns the 0-based index of the button pressed, VK_WARNING_CLOSED or VK_WARNING_FAILED.
    A warning without buttons gets one "OK" button (index 0). Where nobody can answer (no
    display and no terminal) the warning goes to standard error and the answer is 0, the
    first button. The environment variable VESKO_WARNING_ANSWER answers without asking: a
    button's label, else a 0-based index, or -1 for "closed". Example:
      VK_warning(VK_WARN_TITLE, "Export", VK_WARN_LINE, "Overwrite part.obx?",
                 VK_WARN_BUTTON, "Overwrite", VK_WARN_BUTTON, "Cancel", VK_WARN_END); */
OBRIX_API int VK_warning(VK_Warn_Code code, ...);

/** As VK_warning, after first adding the `count` labels of `labels` as buttons (none when
    count is 0 or less or labels is null; a null label counts as ""). Then reads (code, text)
    pairs starting with `code`. */
OBRIX_API int VK_warning_buttons(int count, const char** labels, VK_Warn_Code code, ...);

/** A warning with the single line `text` (null counts as "") and the single button "OK".
    Returns 0, VK_WARNING_CLOSED or VK_WARNING_FAILED. */
OBRIX_API int VK_warning_ok(const char* text);

/** True when the environment variable VESKO_QA exists, or else VESKO_DEBUG (whatever their
    values). Worked out on the first call and kept for the life of the process: setting or
    removing the variables later changes nothing. */
OBRIX_API bool VeskoQAEnabled(void);

/** When QA is enabled and `condition` is false: shows "VESKO_QA Assertion failed: ..." with
    the bug number through rptConfirmOK and, once it is confirmed, ends the process with a
    write to address zero, so the platform's crash reporting takes over. Otherwise does
    nothing. */
OBRIX_API void VeskoQAAssert(int bug, bool condition);

/** Asks whether debug code 800 (heap checking) is set and ignores the answer: a place for a
    debugger's breakpoint, with no other effect. */
OBRIX_API void checkVeskoHeap(void);

OBRIX_EXTERN_C_END

#endif
