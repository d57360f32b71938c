// Starting other programs: asynchronously (a server the application talks to later) or
// synchronously with optional stdin text, captured stdout and a time limit. Arguments reach
// the child verbatim, never through a shell; a program that cannot be started is an error at
// once, never a hang.
#ifndef BASE_QVOS_PROCESS_H
#define BASE_QVOS_PROCESS_H

#include <cstdint>
#include <vector>

#include "Base/BaseExport.h"
#include "Base/qvOS/OSError.h"
#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"

namespace qvOS {

/// A process id as the system gives it (pid_t on POSIX, the DWORD process id on Windows).
using ProcessId = std::int64_t;

/// How runSync runs its child.
struct ProcessOptions {
    qvString::CString workingDir; ///< empty: inherit this process's
    bool feedStdin = false;       ///< true: stdinText is written to the child's stdin, then closed
    /// What the child reads when feedStdin is set.
    qvString::CString stdinText;
    bool captureStdout = false; ///< collect the child's stdout into ProcessResult::stdoutText
    double timeoutSeconds = 0;  ///< 0 = no limit; past it the child is killed and TimedOut returned
};

/// How a child ended.
struct ProcessResult {
    int exitCode = -1;            ///< the exit status (the signal number when crashed on POSIX)
    bool crashed = false;         ///< ended by a signal (POSIX) or an exception code (Windows)
    qvString::CString stdoutText; ///< what it wrote, when captureStdout was asked for
};

/// Starts, waits for and ends child processes. The child inherits this process's environment
/// and, unless redirected, its stdin, stdout and stderr.
///
/// Children of startAsync are recorded in a process-wide table (guarded by a mutex). On POSIX
/// each later call into ProcessManager first reaps every recorded child that has ended and
/// keeps its result for wait, so an application that never waits has at most the children that
/// ended since its last call as zombies, never a growing pile. On Windows the table holds the
/// process handles, closed once the result has been taken.
class BASE_API ProcessManager {
public:
    /// Starts program with args verbatim and returns at once, writing the child's id to pid
    /// when non-null. program is a path (a relative one is taken from this process's working
    /// directory, whatever workingDir says) or a bare name, which the system looks up in PATH.
    /// The child's stdin is the null device, its stdout and stderr are this process's.
    /// Errors: InvalidArgument for an empty program,
    /// NotFound / PermissionDenied / Failed when it cannot be started (the message names the
    /// program and carries the system's text). An empty workingDir inherits this process's.
    static qvUtil::Error startAsync(const qvString::CString& program,
                                    const std::vector<qvString::CString>& args,
                                    const qvString::CString& workingDir, ProcessId* pid = nullptr);
    /// Runs program with args as startAsync does, then waits for it and fills result. stdin is
    /// the null device unless feedStdin; stdin feeding and stdout capture run together, so a
    /// child that writes much before reading cannot deadlock the pair. On timeout the child is
    /// killed and reaped, result holds what was captured so far, and the error is TimedOut.
    static qvUtil::Error runSync(const qvString::CString& program,
                                 const std::vector<qvString::CString>& args,
                                 const ProcessOptions& options, ProcessResult& result);
    /// Waits for a child started by startAsync and reaps it; timeout 0 = no limit. On timeout
    /// the error is TimedOut and the child keeps running (wait again or kill it). A pid that
    /// startAsync did not start, or that was already waited for, is InvalidArgument.
    static qvUtil::Error wait(ProcessId pid, double timeoutSeconds, ProcessResult& result);
    /// Hard kill (SIGKILL / TerminateProcess). A child of startAsync still has to be waited for
    /// (or is reaped by the next call). A pid that does not exist is NotFound.
    static qvUtil::Error kill(ProcessId pid);
    /// True while the process exists and has not ended (a child that ended but was not yet
    /// waited for counts as ended).
    static bool isAlive(ProcessId pid) noexcept;
    /// This process's id.
    static ProcessId currentId() noexcept;
};

} // namespace qvOS

#endif
