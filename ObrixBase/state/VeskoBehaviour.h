// The behaviour flags: the switches and preference file names that differ between builds of
// the application. The library holds one process-wide instance, a base VeskoBehaviour with
// the defaults below until the application installs a subclass at start-up with
// VeskoBehaviour::set. C callers ask the current instance through the VeskoBehaviour_*
// functions of ObrixBase/state/vesko_behaviour.h.
#ifndef OBRIX_STATE_VESKOBEHAVIOUR_H
#define OBRIX_STATE_VESKOBEHAVIOUR_H

#include "Base/qvString/CString.h"
#include "ObrixBase/ObrixExport.h"

/// The application's behaviour switches. No fields: a subclass overrides what its build needs.
/// The order of the virtual functions is part of the binary interface and is kept.
class OBRIX_API VeskoBehaviour {
public:
    VeskoBehaviour() = default;
    /// Copies nothing: the class has no fields; subclasses copy their own.
    VeskoBehaviour(const VeskoBehaviour&) = default;
    /// Copies nothing, as the copy constructor.
    VeskoBehaviour& operator=(const VeskoBehaviour&) = default;
    virtual ~VeskoBehaviour();

    virtual bool wantSinglePerspWindow();                    ///< false
    virtual bool isMultipleObrixSessionsAllowed();           ///< false
    virtual qvString::IString getProductPrefix();            ///< "Vesko"
    virtual qvString::IString getProductIconName();          ///< "Vesko"
    virtual bool userInformationEnabled();                   ///< true
    virtual bool supportSingleStage();                       ///< true
    virtual bool documentSettingsOverrideSessionSettings();  ///< false
    virtual bool largeModelingWindowSize();                  ///< false
    virtual bool paintEnabled() const;                       ///< false
    virtual bool enablePaintUI() const;                      ///< false
    virtual bool paintOnOverlaysOnly() const;                ///< false
    virtual bool paintAddBookmarkToOverlays() const;         ///< false
    virtual bool autoObrixWindows();                         ///< false
    virtual const char* getUserPrefsFileName() const;        ///< "UserPrefs"
    virtual const char* getUserOptionsFileName();            ///< "user_options"
    virtual const char* getBrowserPrefsFileName();           ///< ".VeskoBrowserPrefs"
    virtual const char* getHelpFileName();                   ///< "Help.hta"
    virtual qvString::CString getVeskoPrefsFilename() const; ///< "VeskoPrefs.scm"
    virtual double modelingWindowScale();                    ///< 1.0
    virtual bool splashAtStartup() const;                    ///< true
    virtual bool enableNukeAllOnRetrieve() const;            ///< false
    virtual bool saveOnExit() const;                         ///< true
    virtual bool hardwareReflectionsEnabled() const;         ///< true

    /// The current instance; the first call without an earlier set makes a base instance.
    /// Never null.
    static VeskoBehaviour* get();
    /// Deletes the current instance (when there is one) and makes `behaviour` current; the
    /// library owns it from then on. Null leaves no instance, so the next get() makes a fresh
    /// base one. Setting the current instance again keeps it rather than deleting it. Meant
    /// for start-up: references to the old instance dangle afterwards.
    static void set(VeskoBehaviour* behaviour);
};

#endif
