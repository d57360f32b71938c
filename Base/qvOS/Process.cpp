#include "Base/qvOS/Process.h"

#include <map>
#include <mutex>

#include "Base/qvOS/Filename.h"
#include "Base/qvOS/Process_internal.h"
#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

using qvString::CString;

namespace {

// A child of startAsync, until somebody takes its result with wait.
struct ChildRecord {
    detail::NativeChild native = 0;
    bool finished = false;
    bool waitedFor = false; // a thread waits for it unlocked; reaping it is that thread's job
    ProcessResult result;
};

// Results of ended children that nobody asked for are kept up to this many; past it the
// oldest are forgotten, so an application that never waits does not grow the table forever.
constexpr std::size_t MaxUnclaimedResults = 256;

std::mutex& tableMutex() {
    static std::mutex m;
    return m;
}

std::map<ProcessId, ChildRecord>& children() {
    static std::map<ProcessId, ChildRecord> table;
    return table;
}

// Collects every recorded child that has ended, so none stays a zombie past the next call.
// Called with the table locked.
void reapEnded() {
    std::size_t unclaimed = 0;
    for (auto& [pid, child] : children()) {
        if (!child.finished && !child.waitedFor) {
            qvUtil::Error ignored;
            auto outcome = detail::waitChild(pid, child.native, -1, child.result, ignored);
            if (outcome == detail::WaitOutcome::Finished || outcome == detail::WaitOutcome::Gone) {
                child.finished = true;
                detail::releaseChild(child.native);
                child.native = 0;
            }
        }
        unclaimed += child.finished;
    }
    for (auto it = children().begin(); unclaimed > MaxUnclaimedResults && it != children().end();)
        if (it->second.finished) {
            it = children().erase(it);
            --unclaimed;
        } else
            ++it;
}

qvUtil::Error checkCommand(const CString& program, const std::vector<CString>& args) {
    const char* what = "Cannot start";
    if (program.empty())
        return {OSError::InvalidArgument, "Cannot start a program: the program name is empty"};
    if (auto e = detail::checkPath(what, program); e.isError())
        return e;
    for (const CString& a : args)
        if (a.find('\0') != CString::npos)
            return detail::pathError(OSError::InvalidArgument, what, program,
                                     "an argument contains a NUL character");
    return {};
}

// A relative program path is taken from this process's directory on both systems, also when
// the child is given another working directory; a bare name is looked up by the system.
CString resolveProgram(const CString& program) {
    bool hasSeparator = false;
    for (char c : program)
        hasSeparator |= Filename::isSeparator(c);
    if (!hasSeparator || Filename::isAbsolute(program.c_str()))
        return program;
    std::error_code ec;
    auto absolute = std::filesystem::absolute(detail::toPath(program), ec);
    return ec ? program : detail::fromPath(absolute);
}

} // namespace

qvUtil::Error ProcessManager::startAsync(const CString& program, const std::vector<CString>& args,
                                         const CString& workingDir, ProcessId* pid) {
    if (auto e = checkCommand(program, args); e.isError())
        return e;
    std::lock_guard<std::mutex> lock(tableMutex());
    reapEnded();
    ProcessId id = 0;
    detail::NativeChild native = 0;
    if (auto e = detail::startChild(resolveProgram(program), args, workingDir, id, native);
        e.isError())
        return e;
    ChildRecord record;
    record.native = native;
    children()[id] = record;
    if (pid)
        *pid = id;
    return {};
}

qvUtil::Error ProcessManager::runSync(const CString& program, const std::vector<CString>& args,
                                      const ProcessOptions& options, ProcessResult& result) {
    result = ProcessResult{};
    if (auto e = checkCommand(program, args); e.isError())
        return e;
    {
        std::lock_guard<std::mutex> lock(tableMutex());
        reapEnded();
    }
    return detail::runChild(resolveProgram(program), args, options, result);
}

qvUtil::Error ProcessManager::wait(ProcessId pid, double timeoutSeconds, ProcessResult& result) {
    result = ProcessResult{};
    detail::NativeChild native = 0;
    {
        std::lock_guard<std::mutex> lock(tableMutex());
        reapEnded();
        auto it = children().find(pid);
        if (it == children().end())
            return {OSError::InvalidArgument,
                    "Cannot wait for process %lld: it was not started by startAsync, or was "
                    "already waited for",
                    static_cast<long long>(pid)};
        if (it->second.finished) {
            result = it->second.result;
            children().erase(it);
            return {};
        }
        native = it->second.native;
        it->second.waitedFor = true;
    }
    // The wait itself runs unlocked, so other threads can start and reap children meanwhile.
    qvUtil::Error error;
    auto outcome = detail::waitChild(pid, native, timeoutSeconds, result, error);
    std::lock_guard<std::mutex> lock(tableMutex());
    auto it = children().find(pid);
    if (it != children().end())
        it->second.waitedFor = false;
    switch (outcome) {
    case detail::WaitOutcome::Running:
        return {OSError::TimedOut, "Process %lld still runs after %g seconds",
                static_cast<long long>(pid), timeoutSeconds};
    case detail::WaitOutcome::Failed:
        return error;
    case detail::WaitOutcome::Gone:
        if (it != children().end())
            children().erase(it);
        return {OSError::Failed,
                "Process %lld was collected outside ProcessManager; its exit status is lost",
                static_cast<long long>(pid)};
    case detail::WaitOutcome::Finished:
        break;
    }
    if (it != children().end()) {
        detail::releaseChild(it->second.native);
        children().erase(it);
    }
    return {};
}

qvUtil::Error ProcessManager::kill(ProcessId pid) {
    std::lock_guard<std::mutex> lock(tableMutex());
    reapEnded();
    auto it = children().find(pid);
    if (it != children().end() && it->second.finished)
        return {}; // ended already; its id may belong to another process by now
    return detail::killProcess(pid, it != children().end() ? it->second.native : 0);
}

bool ProcessManager::isAlive(ProcessId pid) noexcept {
    try {
        std::lock_guard<std::mutex> lock(tableMutex());
        reapEnded();
        auto it = children().find(pid);
        if (it != children().end())
            return !it->second.finished;
    } catch (...) {
        // A failed lock or allocation: fall back on asking the system.
    }
    return detail::processExists(pid);
}

ProcessId ProcessManager::currentId() noexcept {
    return detail::currentProcessId();
}

} // namespace qvOS
