// What the cache server's tests share: finding a cache directory's server and waiting for it
// to idle out, and a throw-away redis-server on a free loopback port for the remote tier.
#ifndef OBRIX_TESTS_PROGRAMS_QVCACHED_QVCACHEDTESTSUPPORT_H
#define OBRIX_TESTS_PROGRAMS_QVCACHED_QVCACHEDTESTSUPPORT_H

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "Base/qvOS/AppMain.h"
#include "Base/qvOS/Process.h"
#include "Base/qvTCP/Socket.h"
#include "tests/ObrixBase/filecache/CacheServerDouble.h"

namespace qvcachedtest {

using Clock = std::chrono::steady_clock;

/// The owner's process, from the port file it keeps for operators; 0 when there is none.
inline qvOS::ProcessId ownerPid(const std::filesystem::path& cacheDir) {
    std::ifstream in(cacheDir / "owner.port");
    int port = 0;
    qvOS::ProcessId pid = 0;
    in >> port >> pid;
    return pid;
}

/// Waits (at most 10 s) until no server owns `cacheDir`.
inline void waitForServerExit(const std::filesystem::path& cacheDir) {
    const auto end = Clock::now() + std::chrono::seconds(10);
    while (std::filesystem::exists(cacheDir / "owner.port") && Clock::now() < end) {
        const qvOS::ProcessId pid = ownerPid(cacheDir);
        if (pid > 0 && !qvOS::ProcessManager::isAlive(pid))
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

/// Runs the build's qvcached with `args` (at most 20 s); its standard output goes to `out`.
inline int runQvcached(const std::vector<qvString::CString>& args, std::string& out) {
    qvOS::ProcessOptions options;
    options.captureStdout = true;
    options.timeoutSeconds = 20;
    qvOS::ProcessResult result;
    qvOS::ProcessManager::runSync(qvOS::AppMain::getBinaryPath("qvcached"), args, options, result);
    out = result.stdoutText.c_str();
    return result.exitCode;
}

/// A redis-server of its own: loopback only, nothing saved, in a scratch directory, on a port
/// that was free when it was made. Stopped (killed) when it goes.
class RedisServer {
public:
    /// A server that asks for `password` (AUTH) when it is not empty.
    explicit RedisServer(std::string password = {}) : password_(std::move(password)) {
        {
            qvTCP::Server probe(-1, 1);
            probe.setLoopbackOnly();
            if (probe.listen().isOk())
                port_ = probe.getPort();
        }
        start();
    }
    ~RedisServer() { kill(); }
    RedisServer(const RedisServer&) = delete;
    RedisServer& operator=(const RedisServer&) = delete;

    /// Starts the server on its port and waits (at most 5 s) until it takes connections.
    bool start() {
        if (port_ <= 0) {
            reason_ = "no free loopback port";
            return false;
        }
        const std::string logFile = (dir_.path / "redis.log").string();
        std::vector<qvString::CString> args{"--port", std::to_string(port_).c_str()};
        args.insert(args.end(), {"--bind", "127.0.0.1", "--save", "", "--appendonly", "no"});
        args.insert(args.end(), {"--dir", dir_.str().c_str(), "--logfile", logFile.c_str()});
        args.insert(args.end(), {"--maxmemory", "400mb", "--maxmemory-policy", "allkeys-lru"});
        if (!password_.empty())
            args.insert(args.end(), {"--requirepass", password_.c_str()});
        const qvUtil::Error err = qvOS::ProcessManager::startAsync("redis-server", args, "", &pid_);
        if (err.isError()) {
            reason_ = std::string("redis-server cannot be started: ") + err.message().c_str();
            return false;
        }
        const auto end = Clock::now() + std::chrono::seconds(5);
        while (Clock::now() < end && qvOS::ProcessManager::isAlive(pid_)) {
            qvTCP::ClientSocket socket(qvTCP::Address::loopback(port_));
            if (socket.connect(1).isOk())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        reason_ = "redis-server did not start listening on port " + std::to_string(port_);
        kill();
        return false;
    }

    /// Kills the server (kill -9: nothing flushed) and reaps it.
    void kill() {
        if (pid_ == 0)
            return;
        qvOS::ProcessManager::kill(pid_);
        qvOS::ProcessResult result;
        qvOS::ProcessManager::wait(pid_, 5, result);
        pid_ = 0;
    }

    bool running() const { return pid_ != 0; }
    int port() const { return port_; }
    /// Why it is not running, for a skipped test.
    const std::string& reason() const { return reason_; }

private:
    obrix::test::ScratchDirectory dir_;
    std::string password_;
    int port_ = 0;
    qvOS::ProcessId pid_ = 0;
    std::string reason_;
};

} // namespace qvcachedtest

#endif
