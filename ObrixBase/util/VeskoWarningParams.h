// The description of a warning for C++ callers, the warning call that takes it, and the text
// form in which the library hands a description to the helper program veskoWarning. An
// application that shows warnings in its own windows (or a test) installs a presenter.
#ifndef OBRIX_UTIL_VESKOWARNINGPARAMS_H
#define OBRIX_UTIL_VESKOWARNINGPARAMS_H

#include "Base/qv/Reference.h"
#include "Base/qvString/CString.h"
#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/util/vk_warning.h"

namespace qvObrixBase {

/// One warning: what VK_WARN_TITLE, VK_WARN_LINE, VK_WARN_BUTTON and VK_WARN_KIND set, in the
/// order given. Texts are UTF-8 of any length; a line may itself hold newlines.
struct VeskoWarningParams {
    qvString::CString title;               ///< window title; "" shows "Warning"
    qv::vector<qvString::CString> lines;   ///< message lines, shown in order
    qv::vector<qvString::CString> buttons; ///< button labels, left to right; none shows "OK"
    qv::vector<qvString::CString> details; ///< smaller text below the lines; the C calls leave
                                           ///< it empty
    qvString::CString kind;                ///< "warning" (or ""), "error", "info", "question"

    /// Every field equal.
    friend bool operator==(const VeskoWarningParams&, const VeskoWarningParams&) = default;
};

/// Shows a warning instead of the helper program and returns the answer VK_warning returns.
using WarningPresenter = int (*)(const VeskoWarningParams& params);

/// Installs `presenter` for every later warning and returns the previous one; null (the
/// default) shows warnings through veskoWarning again. Process-wide, not locked.
OBRIX_API WarningPresenter setWarningPresenter(WarningPresenter presenter);

/// The text form veskoWarning reads on its standard input: the line "veskoWarning 1", then one
/// record per field, `<tag> <byte count>\n<bytes>\n` with the tags "title", "kind", "line",
/// "button" and "detail" (lines, buttons and details in order), then the line "end". Byte
/// counts make every text travel intact, newlines and NULs included.
OBRIX_API qvString::CString encodeWarning(const VeskoWarningParams& params);

/// Reads the text form back into `params` (cleared first). Records with unknown tags are
/// skipped, so a newer writer can add fields. Returns false with a one-line reason in `error`
/// when the header is wrong, a record is malformed or runs past the end, or "end" is missing.
OBRIX_API bool decodeWarning(const qvString::CString& text, VeskoWarningParams& params,
                             qvString::CString& error);

} // namespace qvObrixBase

/// Shows `params` as VK_warning does and returns the same answers: the 0-based index of the
/// button pressed, VK_WARNING_CLOSED or VK_WARNING_FAILED.
OBRIX_API int VK_warning(const qvObrixBase::VeskoWarningParams& params);

#endif
