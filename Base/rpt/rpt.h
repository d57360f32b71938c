// User reporting: errors, debug lines, user messages, status lines and confirmations.
// Every report goes to one process-wide sink that the application installs with rptSetSink;
// until it does, reports are written to standard error. Tests install a sink to capture them.
#ifndef BASE_RPT_RPT_H
#define BASE_RPT_RPT_H

#include <cstdarg>

#include "Base/BaseExport.h"

/// The kind of a report, passed to the sink as its level.
enum ReportLevel : int {
    rptLevelError = 1,   ///< an error the user must see
    rptLevelDebug = 2,   ///< developer diagnostics
    rptLevelUser = 3,    ///< an informational message for the user
    rptLevelStatus = 4,  ///< a transient status-line message
    rptLevelConfirm = 5, ///< a message the user acknowledges with one button
};

/// Receives every report: the report's ReportLevel and its formatted text, exactly as the
/// caller formatted it (no newline is added).
using ReportSink = void (*)(int level, const char* text);

/// Installs `sink` and returns the previous one; null restores the default (standard error).
/// The default sink adds a newline after texts that do not end in one.
BASE_API ReportSink rptSetSink(ReportSink sink);

/// printf-style error report.
BASE_API void rptError(const char* format, ...) BASE_PRINTF(1, 2);
/// rptError with an argument list.
BASE_API void rptVError(const char* format, va_list args);
/// printf-style debug report at a verbosity `level`; reported when `level` is at most the
/// debug verbosity (0 at start, so level 0 is always reported).
BASE_API void rptDebug(int level, const char* format, ...) BASE_PRINTF(2, 3);
/// printf-style message for the user.
BASE_API void rptUser(const char* format, ...) BASE_PRINTF(1, 2);
/// printf-style status-line message.
BASE_API void rptStatus(const char* format, ...) BASE_PRINTF(1, 2);
/// printf-style message that the user confirms with one button. Returns once it is confirmed
/// (at once where there is no interactive user).
BASE_API void rptConfirmOK(const char* format, ...) BASE_PRINTF(1, 2);

/// Sets the debug verbosity that rptDebug compares its level against.
BASE_API void rptSetDebugLevel(int level);
/// Turns the numbered debug code `code` on or off; codes switch optional developer checks.
BASE_API void rptSetDebugCode(int code, bool on);
/// True when debug code `code` is on.
BASE_API bool rptDebugCodeIsSet(int code);

#endif
