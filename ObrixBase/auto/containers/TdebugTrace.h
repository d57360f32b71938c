// TdebugTrace: a scoped trace for following the library's calls while debugging. Constructed
// at the top of a function, it prints "Enter <name>" through the debug printer and indents
// everything printed until it dies, when it prints "Leave <name>"; nested traces show the
// call tree. One process-wide switch turns all traces off.
#ifndef OBRIX_AUTO_CONTAINERS_TDEBUGTRACE_H
#define OBRIX_AUTO_CONTAINERS_TDEBUGTRACE_H

#include "Base/BaseExport.h"
#include "ObrixBase/ObrixExport.h"

/// Prints, through AA_debug_print and after AA_indent, "Enter <name>\n" when constructed and
/// "Leave <name>\n" when destroyed, and raises the debug printer's indent level by one in
/// between. A trace made while tracing is off prints nothing and leaves the indent alone,
/// even if tracing is turned on before it dies, so the indent always balances. Holds the
/// caller's name pointer: pass a string that outlives the trace (a literal or __func__).
/// Process-wide, for the modelling thread only.
class OBRIX_API TdebugTrace {
public:
    /// Prints the entry line and indents, when tracing is on.
    explicit TdebugTrace(const char* name) noexcept;
    /// Unindents and prints the leave line, when this trace printed its entry.
    ~TdebugTrace();
    TdebugTrace(const TdebugTrace&) = delete;
    TdebugTrace& operator=(const TdebugTrace&) = delete;

    /// Prints one indented line inside the trace, printf-style, with a newline added; nothing
    /// when this trace is silent.
    void note(const char* format, ...) const BASE_PRINTF(2, 3);

    /// Turns every trace made from now on on or off; on at load.
    static void setEnabled(bool on) noexcept;
    /// Whether traces made now print.
    static bool enabled() noexcept;

private:
    const char* name_;
    bool active_;
};

#endif
