/* The common behaviour questions for C callers: each function asks the current
   VeskoBehaviour instance (ObrixBase/state/VeskoBehaviour.h), making the base instance with
   its defaults on first use. */
#ifndef OBRIX_STATE_VESKO_BEHAVIOUR_H
#define OBRIX_STATE_VESKO_BEHAVIOUR_H

#include <stdbool.h>

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/**@{*/
/** Each asks the current instance's function of the same name (VeskoBehaviour gives the
    defaults). */
OBRIX_API bool VeskoBehaviour_wantSinglePerspWindow(void);
OBRIX_API bool VeskoBehaviour_documentSettingsOverrideSessionSettings(void);
OBRIX_API bool VeskoBehaviour_largeModelingWindowSize(void);
OBRIX_API bool VeskoBehaviour_paintEnabled(void);
OBRIX_API bool VeskoBehaviour_enablePaintUI(void);
OBRIX_API bool VeskoBehaviour_autoObrixWindows(void);
/**@}*/
/** The instance's text; it stays the instance's, valid while the instance lives. */
OBRIX_API const char* VeskoBehaviour_getUserPrefsFileName(void);
/** The instance's text; it stays the instance's, valid while the instance lives. */
OBRIX_API const char* VeskoBehaviour_getBrowserPrefsFileName(void);
/**@{*/
/** Each asks the current instance's function of the same name, as above. */
OBRIX_API double VeskoBehaviour_modelingWindowScale(void);
OBRIX_API bool VeskoBehaviour_enableNukeAllOnRetrieve(void);
OBRIX_API bool VeskoBehaviour_saveOnExit(void);
/**@}*/
/** The product icon name as UTF-8 in a new string from malloc, which the caller frees; null
    when the name is empty or memory runs out. */
OBRIX_API char* VeskoBehaviour_getProductIconName(void);

OBRIX_EXTERN_C_END

#endif
