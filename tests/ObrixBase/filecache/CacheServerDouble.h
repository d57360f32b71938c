// A stand-in for the cache server, for testing the library side where the real server is not
// built (and to watch exactly what the library sends): a FileCacheProtocolServer over an
// in-memory table, serving one connection on a thread of its own and logging every request.
#ifndef OBRIX_TESTS_FILECACHE_CACHESERVERDOUBLE_H
#define OBRIX_TESTS_FILECACHE_CACHESERVERDOUBLE_H

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Base/qvOS/Uuid.h"
#include "Base/qvTCP/Socket.h"
#include "ObrixBase/filecache/FileCacheProtocolServer.h"

namespace obrix::test {

/// A fresh directory under the system's temporary directory, removed with its contents.
struct ScratchDirectory {
    std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("obrix-cache-" + qvOS::Uuid().asString());
    ScratchDirectory() { std::filesystem::create_directories(path); }
    ~ScratchDirectory() {
        std::error_code ec;
        std::filesystem::remove_all(path, ec);
    }
    std::string str() const { return path.string(); }
    void write(const std::string& name, const std::string& text) const {
        std::FILE* f = std::fopen((path / name).string().c_str(), "wb");
        std::fwrite(text.data(), 1, text.size(), f);
        std::fclose(f);
    }
};

/// A loopback port that was listened on a moment ago and is closed now: nothing answers there.
inline int deadLoopbackPort() {
    qvTCP::Server gone(-1, 1);
    gone.setLoopbackOnly();
    gone.listen();
    return gone.getPort();
}

class CacheServerDouble : public qvObrixBase::FileCacheProtocolServer {
public:
    /// Listens on loopback and names its port in `dir`'s lock file.
    explicit CacheServerDouble(const ScratchDirectory& dir) {
        listener_.setLoopbackOnly();
        listener_.listen();
        dir.write("lockfile.lck", std::to_string(listener_.getPort()) + "\n");
        thread_ = std::thread([this] {
            std::unique_ptr<qvTCP::Socket> socket;
            listener_.accept(10.0, socket);
            if (socket)
                serve(std::move(socket));
        });
    }
    /// Connects to `port` (a store waiting for its server by hand) and serves it.
    explicit CacheServerDouble(int port) {
        thread_ = std::thread([this, port] {
            auto socket = std::make_unique<qvTCP::ClientSocket>(qvTCP::Address::loopback(port));
            if (socket->connect().isOk())
                serve(std::move(socket));
        });
    }
    /// Waits for the client to go: destroy the FileCache first.
    ~CacheServerDouble() override { thread_.join(); }

    /// After this many more requests the double closes the connection, as a crashed server
    /// would; -1 serves until the client goes.
    std::atomic<int> requestsLeft{-1};
    int port() const { return listener_.getPort(); }
    std::vector<std::string> log() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return log_;
    }
    std::map<std::string, std::string> files; ///< what the server has: key -> path
    qvUtil::Error initializeAnswer;

    qvUtil::Error initialize(const qvString::CString& directory, int n,
                             std::int64_t limit) override {
        record("initialize " + directory + " " + std::to_string(n) + " " + std::to_string(limit));
        return initializeAnswer;
    }
    bool acquire(const qvString::CString& key, qvString::CString& path,
                 std::int64_t& time) override {
        record("acquire " + key);
        auto it = files.find(key);
        if (it == files.end())
            return false;
        path = it->second;
        time = 1234;
        return true;
    }
    bool add(const qvString::CString& key, const qvString::CString& path) override {
        record("add " + key + " " + path);
        files[key] = path;
        return true;
    }
    bool release(const qvString::CString& key, bool removeFile) override {
        record("release " + key + (removeFile ? " remove" : ""));
        return true;
    }
    void setAccessed(const qvString::CString& key) override { record("setAccessed " + key); }

private:
    void serve(std::unique_ptr<qvTCP::Socket> socket) {
        socket_ = std::move(socket);
        setSocket(*socket_);
        try {
            for (; requestsLeft != 0; --requestsLeft)
                readRequest();
        } catch (const qvUtil::Error&) {
            // the client went away
        }
        socket_->close();
    }
    void record(std::string line) {
        std::lock_guard<std::mutex> lock(mutex_);
        log_.push_back(std::move(line));
    }

    mutable std::mutex mutex_;
    std::vector<std::string> log_;
    qvTCP::Server listener_{-1, 1};
    std::unique_ptr<qvTCP::Socket> socket_;
    std::thread thread_;
};

} // namespace obrix::test

#endif
