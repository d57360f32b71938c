#include "Base/qvOS/Process_internal.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include <windows.h>

#include "Base/qvOS/SystemError_internal.h"

namespace qvOS::detail {

using qvString::CString;
using qvString::IString;

namespace {

// Appends one argument so that the C runtime's command-line parser (which every program built
// with MSVC or mingw uses to make argv) gives back exactly arg: inside quotes, backslashes are
// literal except before a quote or the closing quote, where each must be doubled, and a quote
// is escaped by one more backslash.
void appendQuoted(IString& line, const IString& arg) {
    if (!arg.empty() && arg.find_first_of(L" \t\n\v\"") == IString::npos) {
        line += arg;
        return;
    }
    line += L'"';
    std::size_t backslashes = 0;
    for (wchar_t c : arg) {
        if (c == L'\\') {
            ++backslashes;
            continue;
        }
        if (c == L'"')
            line.append(backslashes * 2 + 1, L'\\');
        else
            line.append(backslashes, L'\\');
        backslashes = 0;
        line += c;
    }
    line.append(backslashes * 2, L'\\');
    line += L'"';
}

IString commandLine(const CString& program, const std::vector<CString>& args) {
    // The program name is parsed by other rules (no escapes, quotes only delimit); a Windows
    // path cannot hold a quote, so plain quotes always do.
    IString line = L"\"" + program.toWide() + L"\"";
    for (const CString& a : args) {
        line += L' ';
        appendQuoted(line, a.toWide());
    }
    return line;
}

struct Handle {
    HANDLE h = nullptr;
    Handle() = default;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { reset(); }
    void reset() noexcept {
        if (h && h != INVALID_HANDLE_VALUE)
            CloseHandle(h);
        h = nullptr;
    }
};

// A pipe whose child end (childReads: the read end) is inheritable and whose other end is not.
qvUtil::Error makePipe(Handle& read, Handle& write, bool childReads) {
    SECURITY_ATTRIBUTES sa{sizeof sa, nullptr, TRUE};
    if (!CreatePipe(&read.h, &write.h, &sa, 0))
        return lastSystemError("Cannot create a pipe for", "the child process");
    SetHandleInformation(childReads ? write.h : read.h, HANDLE_FLAG_INHERIT, 0);
    return {};
}

qvUtil::Error spawn(const CString& program, const std::vector<CString>& args,
                    const CString& workingDir, HANDLE stdinHandle, HANDLE stdoutHandle,
                    PROCESS_INFORMATION& pi) {
    Handle nul;
    if (!stdinHandle) {
        SECURITY_ATTRIBUTES sa{sizeof sa, nullptr, TRUE};
        nul.h = CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &sa,
                            OPEN_EXISTING, 0, nullptr);
        stdinHandle = nul.h;
    }
    STARTUPINFOW si{};
    si.cb = sizeof si;
    si.dwFlags = STARTF_USESTDHANDLES;
    si.hStdInput = stdinHandle;
    si.hStdOutput = stdoutHandle ? stdoutHandle : GetStdHandle(STD_OUTPUT_HANDLE);
    si.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    IString line = commandLine(program, args);
    IString dir = workingDir.toWide();
    // No application name: the system finds the program as a command line would (adding
    // ".exe", searching PATH for a bare name), and a missing one fails here at once.
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                        workingDir.empty() ? nullptr : dir.c_str(), &si, &pi))
        return lastSystemError("Cannot start", program);
    CloseHandle(pi.hThread);
    return {};
}

ProcessResult resultOf(HANDLE process) {
    ProcessResult r;
    DWORD code = 0;
    if (GetExitCodeProcess(process, &code)) {
        r.exitCode = static_cast<int>(code);
        // Exception codes (access violation 0xC0000005 and kin) carry the error severity bits.
        r.crashed = (code & 0xC0000000u) == 0xC0000000u;
    }
    return r;
}

DWORD waitMilliseconds(double seconds) {
    if (seconds < 0)
        return 0;
    if (seconds == 0)
        return INFINITE;
    double ms = seconds * 1000.0;
    return ms >= 4.0e9 ? INFINITE - 1 : static_cast<DWORD>(ms + 0.5);
}

} // namespace

qvUtil::Error startChild(const CString& program, const std::vector<CString>& args,
                         const CString& workingDir, ProcessId& pid, NativeChild& native) {
    PROCESS_INFORMATION pi{};
    if (auto e = spawn(program, args, workingDir, nullptr, nullptr, pi); e.isError())
        return e;
    pid = pi.dwProcessId;
    native = reinterpret_cast<NativeChild>(pi.hProcess);
    return {};
}

WaitOutcome waitChild(ProcessId pid, NativeChild native, double timeoutSeconds,
                      ProcessResult& result, qvUtil::Error& error) {
    HANDLE process = reinterpret_cast<HANDLE>(native);
    DWORD rc = WaitForSingleObject(process, waitMilliseconds(timeoutSeconds));
    if (rc == WAIT_OBJECT_0) {
        result = resultOf(process);
        return WaitOutcome::Finished;
    }
    if (rc == WAIT_TIMEOUT)
        return WaitOutcome::Running;
    error = lastSystemError("Cannot wait for process",
                            CString::format("%lld", static_cast<long long>(pid)));
    return WaitOutcome::Failed;
}

void releaseChild(NativeChild native) noexcept {
    if (native)
        CloseHandle(reinterpret_cast<HANDLE>(native));
}

qvUtil::Error killProcess(ProcessId pid, NativeChild native) {
    CString what = CString::format("%lld", static_cast<long long>(pid));
    HANDLE process = reinterpret_cast<HANDLE>(native);
    Handle opened;
    if (!process) {
        opened.h = OpenProcess(PROCESS_TERMINATE, FALSE, static_cast<DWORD>(pid));
        if (!opened.h) {
            // OpenProcess says "invalid parameter" for an id no process has.
            if (GetLastError() == ERROR_INVALID_PARAMETER)
                return {OSError::NotFound, "Cannot kill process %s: no such process", what.c_str()};
            return lastSystemError("Cannot kill process", what);
        }
        process = opened.h;
    }
    // 137 is what a shell reports for a killed POSIX child; callers see the same number.
    if (!TerminateProcess(process, 137)) {
        // Terminating a process that already ended is refused; it is dead, which was asked.
        if (WaitForSingleObject(process, 0) == WAIT_OBJECT_0)
            return {};
        return lastSystemError("Cannot kill process", what);
    }
    return {};
}

bool processExists(ProcessId pid) noexcept {
    HANDLE h = OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE,
                           static_cast<DWORD>(pid));
    if (!h)
        return GetLastError() == ERROR_ACCESS_DENIED;
    bool running = WaitForSingleObject(h, 0) == WAIT_TIMEOUT;
    CloseHandle(h);
    return running;
}

qvUtil::Error runChild(const CString& program, const std::vector<CString>& args,
                       const ProcessOptions& options, ProcessResult& result) {
    Handle inRead, inWrite, outRead, outWrite;
    if (options.feedStdin)
        if (auto e = makePipe(inRead, inWrite, true); e.isError())
            return e;
    if (options.captureStdout)
        if (auto e = makePipe(outRead, outWrite, false); e.isError())
            return e;
    PROCESS_INFORMATION pi{};
    if (auto e = spawn(program, args, options.workingDir, inRead.h, outWrite.h, pi); e.isError())
        return e;
    Handle process;
    process.h = pi.hProcess;
    // The child holds its own copies; ours must go so that end-of-file and broken pipes happen.
    inRead.reset();
    outWrite.reset();

    // Anonymous pipes have no waiting with a time limit: one thread feeds stdin and one drains
    // stdout, so neither can block the other, while this thread waits for the process with the
    // time limit. Killing the process on timeout breaks both pipes and ends both threads.
    std::thread feeder, drainer;
    if (options.feedStdin) {
        HANDLE h = inWrite.h;
        inWrite.h = nullptr;
        feeder = std::thread([h, &text = options.stdinText] {
            std::size_t fed = 0;
            while (fed < text.size()) {
                DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(text.size() - fed, 1 << 20));
                DWORD written = 0;
                if (!WriteFile(h, text.data() + fed, chunk, &written, nullptr))
                    break; // the child stopped reading: it does not get the rest
                fed += written;
            }
            CloseHandle(h);
        });
    }
    if (options.captureStdout) {
        HANDLE h = outRead.h;
        outRead.h = nullptr;
        drainer = std::thread([h, &out = result.stdoutText] {
            char buffer[65536];
            DWORD got = 0;
            while (ReadFile(h, buffer, sizeof buffer, &got, nullptr) && got > 0)
                out.append(buffer, got);
            CloseHandle(h);
        });
    }
    DWORD rc = WaitForSingleObject(process.h, waitMilliseconds(options.timeoutSeconds));
    bool timedOut = rc == WAIT_TIMEOUT;
    if (timedOut) {
        TerminateProcess(process.h, 137);
        WaitForSingleObject(process.h, INFINITE);
    }
    if (feeder.joinable())
        feeder.join();
    if (drainer.joinable())
        drainer.join();
    if (timedOut) {
        result.crashed = true;
        result.exitCode = 137;
        return {OSError::TimedOut, "\"%s\" did not finish within %g seconds and was killed",
                program.c_str(), options.timeoutSeconds};
    }
    if (rc != WAIT_OBJECT_0)
        return lastSystemError("Cannot wait for", program);
    CString captured = std::move(result.stdoutText);
    result = resultOf(process.h);
    result.stdoutText = std::move(captured);
    return {};
}

ProcessId currentProcessId() noexcept {
    return GetCurrentProcessId();
}

} // namespace qvOS::detail
