#include "Base/qvOS/Process_internal.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Base/qvOS/SystemError_internal.h"

extern char** environ;

namespace qvOS::detail {

using qvString::CString;
using Clock = std::chrono::steady_clock;

namespace {

// Closes a descriptor once, whatever path the function leaves by.
struct Fd {
    int fd = -1;
    Fd() = default;
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    ~Fd() { reset(); }
    void reset() noexcept {
        if (fd >= 0)
            ::close(fd);
        fd = -1;
    }
};

struct Pipe {
    Fd read, write;
    qvUtil::Error open() {
        int fds[2];
        if (::pipe2(fds, O_CLOEXEC) != 0)
            return lastSystemError("Cannot create a pipe for", "the child process");
        read.fd = fds[0];
        write.fd = fds[1];
        return {};
    }
};

struct SpawnActions {
    posix_spawn_file_actions_t actions;
    SpawnActions() { posix_spawn_file_actions_init(&actions); }
    ~SpawnActions() { posix_spawn_file_actions_destroy(&actions); }
};

// Starts the child through posix_spawn: the C library reports a program that cannot be run
// (missing, not executable, bad working directory) as the call's result, so a failure is known
// at once instead of surfacing as an exit code. stdinFd / stdoutFd of -1 mean the null device
// and this process's stdout.
qvUtil::Error spawn(const CString& program, const std::vector<CString>& args,
                    const CString& workingDir, int stdinFd, int stdoutFd, pid_t& pid) {
    SpawnActions fa;
    if (stdinFd >= 0)
        posix_spawn_file_actions_adddup2(&fa.actions, stdinFd, STDIN_FILENO);
    else
        posix_spawn_file_actions_addopen(&fa.actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (stdoutFd >= 0)
        posix_spawn_file_actions_adddup2(&fa.actions, stdoutFd, STDOUT_FILENO);
    if (!workingDir.empty())
        posix_spawn_file_actions_addchdir_np(&fa.actions, workingDir.c_str());
        // The child gets its three standard streams and nothing else: descriptors the application
        // opened without close-on-exec (files, sockets of libraries it uses) would otherwise live
        // as long as the child, keeping a file locked or a server's connection open.
#if defined(__GLIBC__) && (__GLIBC__ > 2 || (__GLIBC__ == 2 && __GLIBC_MINOR__ >= 34))
    posix_spawn_file_actions_addclosefrom_np(&fa.actions, STDERR_FILENO + 1);
#endif

    std::vector<char*> argv;
    argv.reserve(args.size() + 2);
    argv.push_back(const_cast<char*>(program.c_str()));
    for (const CString& a : args)
        argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);

    // A bare name is looked up in PATH, as a shell would; a path is used as it is.
    bool bare = program.find('/') == CString::npos;
    int rc = bare ? posix_spawnp(&pid, program.c_str(), &fa.actions, nullptr, argv.data(), environ)
                  : posix_spawn(&pid, program.c_str(), &fa.actions, nullptr, argv.data(), environ);
    if (rc != 0) {
        if (!workingDir.empty() && ::access(workingDir.c_str(), X_OK) != 0)
            return lastSystemError("Cannot start a program in directory", workingDir);
        return systemError(rc, "Cannot start", program);
    }
    return {};
}

ProcessResult decodeStatus(int status) {
    ProcessResult r;
    if (WIFEXITED(status))
        r.exitCode = WEXITSTATUS(status);
    else if (WIFSIGNALED(status)) {
        r.crashed = true;
        r.exitCode = WTERMSIG(status);
    }
    return r;
}

// Writes to a pipe whose reader may be gone: EPIPE is reported instead of the process-wide
// SIGPIPE, which would end the whole application.
ssize_t writeWithoutSigpipe(int fd, const char* data, std::size_t n) {
    sigset_t pipeSet, old;
    sigemptyset(&pipeSet);
    sigaddset(&pipeSet, SIGPIPE);
    sigset_t pending;
    sigpending(&pending);
    bool wasPending = sigismember(&pending, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSet, &old);
    ssize_t written = ::write(fd, data, n);
    if (written < 0 && errno == EPIPE && !wasPending) {
        int saved = errno;
        timespec zero{0, 0};
        sigtimedwait(&pipeSet, nullptr, &zero); // take back the SIGPIPE this write raised
        errno = saved;
    }
    pthread_sigmask(SIG_SETMASK, &old, nullptr);
    return written;
}

int millisecondsLeft(Clock::time_point deadline, bool limited) {
    if (!limited)
        return -1;
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    return left.count() < 0 ? 0 : static_cast<int>(std::min<long long>(left.count(), 1 << 30));
}

} // namespace

qvUtil::Error startChild(const CString& program, const std::vector<CString>& args,
                         const CString& workingDir, ProcessId& pid, NativeChild& native) {
    pid_t child = 0;
    if (auto e = spawn(program, args, workingDir, -1, -1, child); e.isError())
        return e;
    pid = child;
    native = 0;
    return {};
}

WaitOutcome waitChild(ProcessId pid, NativeChild, double timeoutSeconds, ProcessResult& result,
                      qvUtil::Error& error) {
    bool limited = timeoutSeconds > 0;
    auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                       std::chrono::duration<double>(limited ? timeoutSeconds : 0));
    // POSIX has no waitpid with a time limit; a short, growing sleep between looks keeps the
    // cost low for long waits and the latency low for short ones.
    auto pause = std::chrono::microseconds(200);
    for (;;) {
        int status = 0;
        int flags = timeoutSeconds == 0 ? 0 : WNOHANG;
        pid_t rc = ::waitpid(static_cast<pid_t>(pid), &status, flags);
        if (rc == static_cast<pid_t>(pid)) {
            result = decodeStatus(status);
            return WaitOutcome::Finished;
        }
        if (rc < 0) {
            if (errno == EINTR)
                continue;
            if (errno == ECHILD)
                return WaitOutcome::Gone;
            error = lastSystemError("Cannot wait for process",
                                    CString::format("%lld", static_cast<long long>(pid)));
            return WaitOutcome::Failed;
        }
        if (timeoutSeconds < 0 || (limited && Clock::now() >= deadline))
            return WaitOutcome::Running;
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, std::chrono::microseconds(20000));
    }
}

void releaseChild(NativeChild) noexcept {
}

qvUtil::Error killProcess(ProcessId pid, NativeChild) {
    if (pid <= 0)
        return {OSError::InvalidArgument, "Cannot kill process %lld: not a process id",
                static_cast<long long>(pid)};
    if (::kill(static_cast<pid_t>(pid), SIGKILL) != 0)
        return lastSystemError("Cannot kill process",
                               CString::format("%lld", static_cast<long long>(pid)));
    return {};
}

bool processExists(ProcessId pid) noexcept {
    if (pid <= 0)
        return false;
    return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM;
}

qvUtil::Error runChild(const CString& program, const std::vector<CString>& args,
                       const ProcessOptions& options, ProcessResult& result) {
    Pipe in, out;
    if (options.feedStdin)
        if (auto e = in.open(); e.isError())
            return e;
    if (options.captureStdout)
        if (auto e = out.open(); e.isError())
            return e;
    pid_t pid = 0;
    if (auto e = spawn(program, args, options.workingDir, options.feedStdin ? in.read.fd : -1,
                       options.captureStdout ? out.write.fd : -1, pid);
        e.isError())
        return e;
    // The child holds its own copies; ours must go so that EOF and EPIPE can happen.
    in.read.reset();
    out.write.reset();

    bool limited = options.timeoutSeconds > 0;
    auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                       std::chrono::duration<double>(options.timeoutSeconds));
    std::size_t fed = 0;
    if (options.feedStdin) {
        ::fcntl(in.write.fd, F_SETFL, ::fcntl(in.write.fd, F_GETFL) | O_NONBLOCK);
        if (options.stdinText.empty())
            in.write.reset();
    }
    // Feed stdin and drain stdout together: a child that fills its stdout pipe before it has
    // read all its input would otherwise wait on us while we wait on it.
    bool timedOut = false;
    while (in.write.fd >= 0 || out.read.fd >= 0) {
        pollfd fds[2];
        nfds_t n = 0;
        if (in.write.fd >= 0)
            fds[n++] = {in.write.fd, POLLOUT, 0};
        if (out.read.fd >= 0)
            fds[n++] = {out.read.fd, POLLIN, 0};
        int rc = ::poll(fds, n, millisecondsLeft(deadline, limited));
        if (rc < 0 && errno == EINTR)
            continue;
        if (rc == 0) {
            timedOut = true;
            break;
        }
        if (rc < 0)
            break;
        for (nfds_t i = 0; i < n; ++i) {
            if (!fds[i].revents)
                continue;
            if (fds[i].fd == in.write.fd) {
                ssize_t w = writeWithoutSigpipe(in.write.fd, options.stdinText.data() + fed,
                                                options.stdinText.size() - fed);
                if (w > 0)
                    fed += static_cast<std::size_t>(w);
                // A child that stops reading early just does not get the rest.
                if ((w < 0 && errno != EAGAIN && errno != EINTR) || fed == options.stdinText.size())
                    in.write.reset();
            } else {
                char buffer[65536];
                ssize_t r = ::read(out.read.fd, buffer, sizeof buffer);
                if (r > 0)
                    result.stdoutText.append(buffer, static_cast<std::size_t>(r));
                else if (r == 0 || (errno != EINTR && errno != EAGAIN))
                    out.read.reset();
            }
        }
    }
    if (!timedOut) {
        double left =
            limited
                ? std::max(0.001, std::chrono::duration<double>(deadline - Clock::now()).count())
                : 0;
        qvUtil::Error error;
        ProcessResult ended;
        WaitOutcome outcome = waitChild(pid, 0, left, ended, error);
        if (outcome == WaitOutcome::Finished) {
            ended.stdoutText = std::move(result.stdoutText);
            result = std::move(ended);
            return {};
        }
        if (outcome == WaitOutcome::Failed)
            return error;
        if (outcome == WaitOutcome::Gone)
            return {OSError::Failed, "Process %lld running \"%s\" was collected elsewhere",
                    static_cast<long long>(pid), program.c_str()};
    }
    // Out of time: the child is killed and reaped so it leaves no zombie.
    ::kill(pid, SIGKILL);
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    result.crashed = true;
    result.exitCode = SIGKILL;
    return {OSError::TimedOut, "\"%s\" did not finish within %g seconds and was killed",
            program.c_str(), options.timeoutSeconds};
}

ProcessId currentProcessId() noexcept {
    return ::getpid();
}

} // namespace qvOS::detail
