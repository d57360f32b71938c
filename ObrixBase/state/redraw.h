/* Redraw scheduling. Modelling operations do not draw: they note which display planes need
   redrawing (a bit set), a layer mark and a redraw-everything flag, and then ask for the
   pending redraw, which the application carries out through the redraw hook registered with
   rtbInit_redrawSetRedrawPending. The hook reads the pending state and resets it itself.
   Also kept here: the process's update-pending flag. Single-threaded plain globals. */
#ifndef OBRIX_STATE_REDRAW_H
#define OBRIX_STATE_REDRAW_H

#include <stdbool.h>

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/** The plane set an undo command asks to have redrawn. Any other value selects nothing. */
#ifdef __cplusplus
/* Held as a plain int in C++ too: C callers may pass any int, and a C++ enum without a fixed
   type could not hold values beyond its enumerators' range. */
typedef enum ObrixRedraw : int {
#else
typedef enum ObrixRedraw {
#endif
    ObrixRedrawActivePlanes = 1,   /**< planes 0x9C0 */
    ObrixRedrawModelPlanes = 2,    /**< planes 0x9F8 */
    ObrixRedrawTemplatePlanes = 3, /**< planes 0x9FF */
    ObrixRedrawWindowPlanes = 4    /**< planes 0xFFF */
} ObrixRedraw;

/** Adds the planes of `mask` to the pending planes. */
OBRIX_API void redraw_add_pending_planes(int mask);
/** Sets the layer mark to `n` when none is set (0) or when `n` is smaller, as a signed
    comparison: the smallest mark wins, and 0, being smaller than any mark, clears it. */
OBRIX_API void redraw_add_pending_layers(int n);
/** redraw_add_pending_planes(mask), then redraw_add_pending_layers(n). */
OBRIX_API void redraw_add_planes(int mask, int n);
/** redraw_add_planes with the active (0x9C0), model (0x9F8), template (0x9FF) or window
    (0xFFF) planes and layer mark 1. */
/**@{*/
OBRIX_API void redraw_add_active_planes(void);
OBRIX_API void redraw_add_model_planes(void);
OBRIX_API void redraw_add_template_planes(void);
OBRIX_API void redraw_add_window_planes(void);
/**@}*/
/** Asks for everything to be redrawn. */
OBRIX_API void redraw_add_all(void);
/** Removes the planes of `mask`; when no plane is left pending, the layer mark goes too. */
OBRIX_API void redraw_remove_planes(int mask);
/** Withdraws the request to redraw everything. */
OBRIX_API void redraw_remove_redraw_all(void);
/** Clears the pending planes, the layer mark and the redraw-everything flag. */
OBRIX_API void redraw_reset_pending(void);
/** The pending planes, the layer mark (0: none) and the redraw-everything flag, as noted so
    far; the redraw hook reads them before it resets them. */
/**@{*/
OBRIX_API int redraw_get_pending_planes(void);
OBRIX_API int redraw_get_pending_layers(void);
OBRIX_API bool redraw_get_pending_redraw_all(void);
/**@}*/

/** Suppresses redraw_any_pending until the matching redraw_enable. Calls nest by a counter
    without bound checks: an unmatched redraw_enable drives it negative, and redraws stay
    suppressed until it is back at 0. */
OBRIX_API void redraw_disable(void);
/** Undoes one redraw_disable. */
OBRIX_API void redraw_enable(void);
/** Calls the redraw hook when redraws are not disabled and a hook is registered, whether or
    not anything is pending; otherwise does nothing. */
OBRIX_API void redraw_any_pending(void);
/** redraw_add_planes(mask, n), then redraw_any_pending(). */
OBRIX_API void redraw(int mask, int n);
/** redraw_add_all(), then redraw_any_pending(). */
OBRIX_API void redraw_all(void);

/** The process's update-pending flag, independent of the redraw state; false at load. */
/**@{*/
OBRIX_API void qvObrixBase_set_update_pending(void);
OBRIX_API void qvObrixBase_clear_update_pending(void);
OBRIX_API bool qvObrixBase_get_update_pending(void);
/**@}*/

OBRIX_EXTERN_C_END

#endif
