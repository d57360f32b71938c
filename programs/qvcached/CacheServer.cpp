#include "programs/qvcached/CacheServer.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <thread>
#include <utility>

#include <boost/asio.hpp>

#include "Base/qvOS/FileLock.h"
#include "Base/qvOS/Process.h"
#include "Base/qvOS/Uuid.h"
#include "ObrixBase/filecache/FileCacheProtocol.h"
#include "programs/qvcached/CacheStore.h"
#include "programs/qvcached/RemoteTier.h"
#include "programs/qvcached/WireFormat.h"

namespace qvcached {
namespace {

namespace asio = boost::asio;
namespace fs = std::filesystem;
using tcp = asio::ip::tcp;
using qvObrixBase::FileCacheRequest;

constexpr const char* OwnerLockName = "owner.lck";
constexpr const char* OwnerPortName = "owner.port";
// How long a new server looks for the owner of its directory before it gives up.
constexpr auto OwnerSearchTime = std::chrono::seconds(5);
// The owner saves last-use times and counters, and checks that the lock file still names it,
// this often.
constexpr auto HousekeepingPeriod = std::chrono::milliseconds(250);
constexpr std::size_t ReadChunk = 64 * 1024;
// A client that sends faster than it reads its replies is not read from while this much
// output waits for it.
constexpr std::size_t MaxPendingOutput = 1u << 20;

// The port written at the start of a small text file; 0 when there is none.
int readPort(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    char text[32] = {};
    in.read(text, sizeof text - 1);
    return std::atoi(text);
}

class Server;

// One client of the owner (or the first client of a new server, until it knows its role).
class Connection : public std::enable_shared_from_this<Connection> {
public:
    Connection(Server& server, tcp::socket socket, ConnectionId id)
        : server_(server), socket_(std::move(socket)), id_(id) {}

    void start() { read(); }
    void close();
    /// Sends the reply to the request that handle() left waiting, then goes on with the rest.
    void resume(const std::string& reply);

private:
    void read();
    void process();
    void flush();

    Server& server_;
    tcp::socket socket_;
    ConnectionId id_;
    std::vector<char> in_;
    std::size_t begin_ = 0, end_ = 0;
    std::string out_, sending_;
    bool writing_ = false, paused_ = false, closed_ = false;
    bool reading_ = false;
    // A request waits for the remote tier; later ones wait behind it, so replies keep their
    // order.
    bool waiting_ = false;
};

// Passes bytes both ways between a client and the owning server, unchanged, until either
// side goes; then both connections close, so the owner sees the client leave.
class Relay : public std::enable_shared_from_this<Relay> {
public:
    Relay(tcp::socket client, tcp::socket owner)
        : client_(std::move(client)), owner_(std::move(owner)) {}

    void start(std::string pending) {
        pending_ = std::move(pending);
        auto self = shared_from_this();
        asio::async_write(owner_, asio::buffer(pending_),
                          [self](const boost::system::error_code& ec, std::size_t) {
                              if (ec)
                                  return self->stop();
                              self->pump(self->client_, self->owner_, self->up_);
                          });
        pump(owner_, client_, down_);
    }

private:
    using Buffer = std::array<char, ReadChunk>;

    void pump(tcp::socket& from, tcp::socket& to, Buffer& buffer) {
        auto self = shared_from_this();
        from.async_read_some(
            asio::buffer(buffer),
            [self, &from, &to, &buffer](const boost::system::error_code& ec, std::size_t n) {
                if (ec)
                    return self->stop();
                asio::async_write(
                    to, asio::buffer(buffer.data(), n),
                    [self, &from, &to, &buffer](const boost::system::error_code& wec, std::size_t) {
                        if (wec)
                            return self->stop();
                        self->pump(from, to, buffer);
                    });
            });
    }

    void stop() {
        boost::system::error_code ignored;
        client_.close(ignored);
        owner_.close(ignored);
    }

    tcp::socket client_, owner_;
    std::string pending_;
    Buffer up_{}, down_{};
};

class Server {
public:
    enum class Role { Unset, Owner, Relay, Failed };

    explicit Server(const ServerOptions& options)
        : options_(options), idleTimer_(io_), houseTimer_(io_) {}

    int run(std::string& error) {
        tcp::socket socket(io_);
        boost::system::error_code ec;
        socket.connect(tcp::endpoint(asio::ip::address_v4::loopback(),
                                     static_cast<unsigned short>(options_.port)),
                       ec);
        if (ec) {
            error = "cannot connect to the application on port " + std::to_string(options_.port) +
                    ": " + ec.message();
            return 1;
        }
        addConnection(std::move(socket));
        detachFromTerminal();
        io_.run();
        return 0;
    }

    bool awaitingDirectory() const noexcept { return role_ == Role::Unset; }

    // Decides the role from the first Initialize: owner when the directory's lock is free,
    // relay when another server has it. Runs before this server serves anyone else, so
    // the wait for an owner that is still starting blocks no other client.
    Role setup(const std::string& directoryText) {
        std::error_code ec;
        fs::path dir = fs::absolute(fs::path(directoryText), ec);
        if (!ec && !fs::exists(dir, ec) && fs::create_directories(dir, ec))
            fs::permissions(dir, fs::perms::owner_all, ec);
        if (!ec)
            dir = fs::canonical(dir, ec);
        if (ec || !fs::is_directory(dir)) {
            return fail("cannot use " + directoryText + " as a cache directory: " +
                        (ec ? ec.message() : std::string("not a directory")));
        }
        directory_ = dir;
        const auto deadline = std::chrono::steady_clock::now() + OwnerSearchTime;
        for (;;) {
            if (auto err = lock_.tryLock((dir / OwnerLockName).string()); err.isError())
                return fail(err.message());
            if (lock_.isLocked())
                return becomeOwner();
            if (const int port = readPort(dir / OwnerPortName); port > 0) {
                tcp::socket owner(io_);
                boost::system::error_code cec;
                owner.connect(tcp::endpoint(asio::ip::address_v4::loopback(),
                                            static_cast<unsigned short>(port)),
                              cec);
                if (!cec) {
                    owner.set_option(tcp::no_delay(true), cec);
                    ownerSocket_.emplace(std::move(owner));
                    return role_ = Role::Relay;
                }
            }
            if (std::chrono::steady_clock::now() > deadline)
                return fail("the cache server that owns " + dir.string() + " does not answer");
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }

    void startRelay(tcp::socket client, std::string pending) {
        std::make_shared<Relay>(std::move(client), std::move(*ownerSocket_))
            ->start(std::move(pending));
        ownerSocket_.reset();
    }

    // Appends the reply to `out`, or returns false when the reply must wait for the remote
    // tier: the connection then gets it through resume().
    bool handle(ConnectionId id, const Request& request, std::string& out) {
        switch (request.code) {
        case FileCacheRequest::Initialize: {
            if (role_ != Role::Owner) {
                putError(out, 1, failure_);
                break;
            }
            std::error_code ec;
            const fs::path asked = fs::weakly_canonical(fs::absolute(request.text, ec), ec);
            if (ec || asked != directory_) {
                putError(out, 1,
                         "this cache server serves " + directory_.string() + ", not " +
                             request.text);
                break;
            }
            store_->setLimits(request.number, request.number64);
            putError(out, 0, {});
            break;
        }
        case FileCacheRequest::Acquire: {
            std::string path;
            std::int64_t time = 0;
            const bool found = store_ && store_->acquire(id, request.text, path, time, !tier_);
            if (!found && tier_) {
                fetch(id, request.text);
                return false;
            }
            putAcquireReply(out, found, path, time);
            break;
        }
        case FileCacheRequest::Add: {
            const bool known = store_ && store_->contains(request.text);
            const bool added = store_ && store_->add(id, request.text, request.path);
            if (added && !known && tier_)
                tier_->store(request.text, directory_ / fs::path(request.path).filename());
            putBool(out, added);
            break;
        }
        case FileCacheRequest::Release:
            putBool(out, store_ && store_->release(id, request.text, request.flag));
            break;
        case FileCacheRequest::SetAccessed:
            if (store_)
                store_->setAccessed(request.text);
            putInt(out, 0);
            break;
        }
        return true;
    }

    // The connection handed its socket to a relay: it leaves without releasing anything,
    // since it never held anything here.
    void forget(ConnectionId id) { connections_.erase(id); }

    void connectionClosed(ConnectionId id) {
        if (store_)
            store_->dropConnection(id);
        connections_.erase(id);
        if (!connections_.empty())
            return;
        if (role_ != Role::Owner) {
            io_.stop();
            return;
        }
        waitForIdle(options_.idleSeconds);
    }

private:
    static void putAcquireReply(std::string& out, bool found, const std::string& path,
                                std::int64_t time) {
        putString(out, path);
        putInt64(out, time);
        putBool(out, found);
    }

    void waitForIdle(double seconds) {
        idleTimer_.expires_after(std::chrono::duration_cast<std::chrono::steady_clock::duration>(
            std::chrono::duration<double>(seconds)));
        idleTimer_.async_wait([this](const boost::system::error_code& ec) {
            if (!ec)
                onIdle();
        });
    }

    // Asks the remote tier for `key` on behalf of `id`; clients asking for a key already
    // on its way wait for the same fetch.
    void fetch(ConnectionId id, const std::string& key) {
        std::vector<ConnectionId>& waiting = fetching_[key];
        waiting.push_back(id);
        if (waiting.size() > 1)
            return;
        const std::string name = qvOS::Uuid().asString().c_str();
        tier_->fetch(key, directory_ / name, [this, key, name](bool found) {
            asio::post(io_, [this, key, name, found] { fetched(key, name, found); });
        });
    }

    // A fetched file becomes an entry like any added one, and every waiting client gets the
    // reply a local lookup gives now.
    void fetched(const std::string& key, const std::string& name, bool found) {
        const std::vector<ConnectionId> waiting = std::move(fetching_[key]);
        fetching_.erase(key);
        if (found && !store_->adopt(key, name)) {
            std::error_code ec; // added by a client meanwhile, or the index is unwritable
            fs::remove(directory_ / name, ec);
        }
        for (ConnectionId id : waiting) {
            auto it = connections_.find(id);
            if (it == connections_.end())
                continue;
            std::string path, out;
            std::int64_t time = 0;
            const bool hit = store_->acquire(id, key, path, time);
            putAcquireReply(out, hit, path, time);
            it->second->resume(out);
        }
    }

    // Where remote.conf names a tier, starts it; a tier that cannot start (bad configuration,
    // a build without one) leaves a line in the log and the cache local.
    void startRemoteTier() {
        auto log = [dir = directory_](const std::string& line) { appendServerLog(dir, line); };
        std::optional<RemoteConfig> config;
        qvUtil::Error err = loadRemoteConfig(directory_, config);
        if (err.isOk() && config)
            tier_ = makeRemoteTier(*config, log, err);
        if (err.isError())
            log(std::string("remote tier off: ") + err.message().c_str());
    }

    void collectRemoteCounters() {
        if (tier_)
            store_->addRemoteCounters(tier_->takeCounters());
    }

    Role fail(std::string reason) {
        failure_ = std::move(reason);
        return role_ = Role::Failed;
    }

    Role becomeOwner() {
        store_ = std::make_unique<CacheStore>(directory_);
        if (auto err = store_->open(); err.isError()) {
            store_.reset();
            lock_.unlock();
            return fail(err.message());
        }
        boost::system::error_code ec;
        acceptor_.emplace(io_);
        acceptor_->open(tcp::v4(), ec);
        if (!ec)
            acceptor_->bind(tcp::endpoint(asio::ip::address_v4::loopback(), 0), ec);
        if (!ec)
            acceptor_->listen(asio::socket_base::max_listen_connections, ec);
        if (ec) {
            store_.reset();
            lock_.unlock();
            return fail("cannot listen on the loopback interface: " + ec.message());
        }
        port_ = acceptor_->local_endpoint().port();
        startRemoteTier();
        publish();
        accept();
        housekeeping();
        return role_ = Role::Owner;
    }

    // Later servers find the owner through owner.port, which no client touches; clients find
    // it through the lock file, which a client deletes when it cannot connect.
    // owner.port also names the owner's process, for operators (and fault tests) that need
    // to find it.
    void publish() {
        const std::string text = std::to_string(port_) + "\n";
        writeFileAtomically((directory_ / OwnerPortName).string(),
                            std::to_string(port_) + " " +
                                std::to_string(qvOS::ProcessManager::currentId()) + "\n");
        writeFileAtomically((directory_ / qvObrixBase::FileCacheProtocol::LockFileName).string(),
                            text);
    }

    void withdraw() {
        for (const char* name : {OwnerPortName, qvObrixBase::FileCacheProtocol::LockFileName}) {
            const fs::path path = directory_ / name;
            std::error_code ec;
            if (readPort(path) == port_)
                fs::remove(path, ec);
        }
    }

    void accept() {
        acceptor_->async_accept([this](const boost::system::error_code& ec, tcp::socket socket) {
            if (ec == asio::error::operation_aborted || !acceptor_->is_open())
                return;
            if (!ec)
                addConnection(std::move(socket));
            accept();
        });
    }

    void addConnection(tcp::socket socket) {
        boost::system::error_code ec;
        socket.set_option(tcp::no_delay(true), ec);
        idleTimer_.cancel();
        const ConnectionId id = nextId_++;
        auto connection = std::make_shared<Connection>(*this, std::move(socket), id);
        connections_[id] = connection;
        connection->start();
    }

    void housekeeping() {
        houseTimer_.expires_after(HousekeepingPeriod);
        houseTimer_.async_wait([this](const boost::system::error_code& ec) {
            if (ec)
                return;
            collectRemoteCounters();
            store_->flush();
            // A client that read an older owner's port may have deleted this owner's lock
            // file after failing to connect; later clients would then start needless servers.
            if (readPort(directory_ / qvObrixBase::FileCacheProtocol::LockFileName) != port_)
                publish();
            housekeeping();
        });
    }

    void onIdle() {
        if (!connections_.empty())
            return;
        // Write-throughs still queued would be lost with the process; they are bounded by the
        // tier's timeouts and end at once while it rests.
        if (!fetching_.empty() || (tier_ && tier_->busy()))
            return waitForIdle(0.1);
        withdraw();
        // A client that read the lock file just before it went may already be queued: take
        // it and stay.
        acceptor_->cancel();
        acceptor_->non_blocking(true);
        for (;;) {
            boost::system::error_code ec;
            tcp::socket socket(io_);
            acceptor_->accept(socket, ec);
            if (ec)
                break;
            addConnection(std::move(socket));
        }
        acceptor_->non_blocking(false);
        if (!connections_.empty()) {
            publish();
            accept();
            return;
        }
        boost::system::error_code ignored;
        acceptor_->close(ignored);
        houseTimer_.cancel();
        if (tier_)
            tier_->stop();
        collectRemoteCounters();
        store_->flush();
        lock_.unlock();
        io_.stop();
    }

    // The server outlives the application that started it: it must not keep that
    // application's terminal or output pipes open.
    static void detachFromTerminal() {
        std::fflush(stdout);
        (void)std::freopen("/dev/null", "r", stdin);
        (void)std::freopen("/dev/null", "w", stdout);
        (void)std::freopen("/dev/null", "w", stderr);
    }

    ServerOptions options_;
    asio::io_context io_;
    asio::steady_timer idleTimer_, houseTimer_;
    Role role_ = Role::Unset;
    std::string failure_ = "the cache server has no directory yet";
    fs::path directory_;
    qvOS::FileLock lock_;
    std::unique_ptr<CacheStore> store_;
    std::optional<tcp::acceptor> acceptor_;
    std::optional<tcp::socket> ownerSocket_;
    int port_ = 0;
    ConnectionId nextId_ = 1;
    std::map<ConnectionId, std::shared_ptr<Connection>> connections_;
    // Declared after io_ so that its threads are joined before io_ goes.
    std::unique_ptr<RemoteTier> tier_;
    // Keys being fetched, with the clients waiting for each.
    std::map<std::string, std::vector<ConnectionId>> fetching_;
};

void Connection::close() {
    if (closed_)
        return;
    closed_ = true;
    boost::system::error_code ignored;
    socket_.close(ignored);
    server_.connectionClosed(id_);
}

void Connection::resume(const std::string& reply) {
    if (closed_)
        return;
    waiting_ = false;
    out_ += reply;
    process();
}

void Connection::read() {
    if (reading_)
        return;
    reading_ = true;
    if (begin_ == end_)
        begin_ = end_ = 0;
    if (in_.size() - end_ < ReadChunk) {
        if (begin_ > 0) {
            std::memmove(in_.data(), in_.data() + begin_, end_ - begin_);
            end_ -= begin_;
            begin_ = 0;
        }
        if (in_.size() - end_ < ReadChunk)
            in_.resize(end_ + ReadChunk);
    }
    auto self = shared_from_this();
    socket_.async_read_some(asio::buffer(in_.data() + end_, in_.size() - end_),
                            [self](const boost::system::error_code& ec, std::size_t n) {
                                self->reading_ = false;
                                if (ec)
                                    return self->close();
                                self->end_ += n;
                                self->process();
                            });
}

void Connection::process() {
    while (!closed_ && !waiting_) {
        Request request;
        std::size_t used = 0;
        const DecodeStatus status =
            decodeRequest(in_.data() + begin_, end_ - begin_, request, used);
        if (status == DecodeStatus::Incomplete)
            break;
        if (status == DecodeStatus::FrameTooLong)
            return close();
        if (status == DecodeStatus::UnknownCode) {
            begin_ += used;
            continue;
        }
        if (request.code == FileCacheRequest::Initialize && server_.awaitingDirectory() &&
            server_.setup(request.text) == Server::Role::Relay) {
            // Everything from this request on belongs to the owner.
            closed_ = true;
            server_.startRelay(std::move(socket_), std::string(in_.data() + begin_, end_ - begin_));
            server_.forget(id_);
            return;
        }
        begin_ += used;
        waiting_ = !server_.handle(id_, request, out_);
    }
    if (closed_)
        return;
    flush();
    // A waiting connection still reads, to see its client leave, but buffers no more than
    // a writer that is not read from may leave waiting.
    if (out_.size() + sending_.size() > MaxPendingOutput ||
        (waiting_ && end_ - begin_ > MaxPendingOutput)) {
        paused_ = true;
    } else {
        paused_ = false;
        read();
    }
}

void Connection::flush() {
    if (writing_ || out_.empty() || closed_)
        return;
    writing_ = true;
    sending_.swap(out_);
    out_.clear();
    auto self = shared_from_this();
    asio::async_write(
        socket_, asio::buffer(sending_), [self](const boost::system::error_code& ec, std::size_t) {
            self->writing_ = false;
            self->sending_.clear();
            if (ec)
                return self->close();
            self->flush();
            if (self->paused_ && self->out_.size() < MaxPendingOutput && !self->waiting_) {
                self->paused_ = false;
                self->read();
            }
        });
}

} // namespace

bool writeFileAtomically(const std::string& path, const std::string& text) {
    const std::string temporary =
        path + "." + std::to_string(qvOS::ProcessManager::currentId()) + ".tmp";
    std::error_code ec;
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << text;
        out.close();
        if (!out) {
            fs::remove(temporary, ec);
            return false;
        }
    }
    fs::permissions(temporary, fs::perms::owner_read | fs::perms::owner_write, ec);
    fs::rename(temporary, path, ec);
    if (!ec)
        return true;
    fs::remove(temporary, ec);
    return false;
}

int runServer(const ServerOptions& options, std::string& error) {
    Server server(options);
    return server.run(error);
}

} // namespace qvcached
