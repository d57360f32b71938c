// The system half of ProcessManager: each body starts, polls, waits for and kills children;
// Process.cpp keeps the table of asynchronous children and the argument checks.
#ifndef BASE_QVOS_PROCESS_INTERNAL_H
#define BASE_QVOS_PROCESS_INTERNAL_H

#include <cstdint>
#include <vector>

#include "Base/qvOS/Process.h"

namespace qvOS::detail {

/// The system's hold on a child: unused on POSIX (the pid is enough), the process HANDLE on
/// Windows.
using NativeChild = std::intptr_t;

/// Starts program (already checked) with stdin from the null device; fills pid and native.
qvUtil::Error startChild(const qvString::CString& program,
                         const std::vector<qvString::CString>& args,
                         const qvString::CString& workingDir, ProcessId& pid, NativeChild& native);

/// How waitChild ended.
enum class WaitOutcome { Finished, Running, Gone, Failed };

/// Waits for the child: timeoutSeconds < 0 only looks, 0 waits without limit, > 0 waits at
/// most that long. Finished fills result (and the child is reaped); Running means the time ran
/// out; Gone means someone else reaped it; Failed fills error.
WaitOutcome waitChild(ProcessId pid, NativeChild native, double timeoutSeconds,
                      ProcessResult& result, qvUtil::Error& error);

/// Releases what the system holds for a child that was waited for (the Windows handle).
void releaseChild(NativeChild native) noexcept;

/// Hard kill; native may be 0 when the child is not one of ours.
qvUtil::Error killProcess(ProcessId pid, NativeChild native);

/// True while a process of that id exists and has not ended.
bool processExists(ProcessId pid) noexcept;

/// runSync's body, after the checks.
qvUtil::Error runChild(const qvString::CString& program, const std::vector<qvString::CString>& args,
                       const ProcessOptions& options, ProcessResult& result);

ProcessId currentProcessId() noexcept;

} // namespace qvOS::detail

#endif
