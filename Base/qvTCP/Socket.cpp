#include "Base/qvTCP/Socket.h"

#include <array>
#include <chrono>
#include <climits>
#include <string>
#include <utility>
#include <vector>

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/tcp.hpp>

#include "Base/qvTCP/Socket_internal.h"

namespace qvTCP {

namespace asio = boost::asio;
using tcp = asio::ip::tcp;
using Clock = std::chrono::steady_clock;

namespace {

// Every socket and server of the process hangs off one io_context. Only synchronous
// operations run on it, so it is never run; it merely owns the socket services. It is never
// destroyed: a socket in a static object may outlive any order of static destruction.
asio::io_context& ioContext() {
    static asio::io_context* context = new asio::io_context(1);
    return *context;
}

std::string systemText(int error) {
    return boost::system::error_code(error, asio::error::get_system_category()).message();
}

// A point in time `seconds` from now; seconds <= 0 means no limit.
struct Deadline {
    explicit Deadline(double seconds)
        : limited(seconds > 0),
          end(limited ? Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                           std::chrono::duration<double>(seconds))
                      : Clock::time_point()) {}

    // Milliseconds left, rounded up so a short wait is not turned into a busy loop;
    // -1 without a limit; 0 once the time is up.
    int remainingMs() const {
        if (!limited)
            return -1;
        auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0)
            return 0;
        return left > INT_MAX ? INT_MAX : static_cast<int>(left);
    }
    bool expired() const { return limited && Clock::now() >= end; }

    bool limited;
    Clock::time_point end;
};

// Waits for handle within the deadline. Returns 1 ready, 0 out of time, -1 failed (error set).
int waitUntil(NativeHandle handle, detail::WaitFor what, const Deadline& deadline, int& error) {
    for (;;) {
        int ms = deadline.remainingMs();
        if (ms == 0)
            return 0;
        int ready = detail::waitReady(handle, what, ms, error);
        if (ready != 0)
            return ready;
        // 0: time up or a signal cut the wait short; the deadline tells which.
    }
}

std::string endpointText(const tcp::endpoint& endpoint) {
    boost::system::error_code ec;
    std::string host = endpoint.address().to_string(ec);
    if (endpoint.address().is_v6())
        host = "[" + host + "]";
    return host + ":" + std::to_string(endpoint.port());
}

NativeHandle toHandle(tcp::socket::native_handle_type handle) {
    return static_cast<NativeHandle>(handle);
}

} // namespace

// --- Address -----------------------------------------------------------------------------

Address::Address(const qvString::CString& host, int port) : host_(host), port_(port) {
}

Address Address::loopback(int port) {
    return Address("127.0.0.1", port);
}

// --- Socket ------------------------------------------------------------------------------

struct Socket::Impl {
    Impl() : socket(ioContext()) {}
    tcp::socket socket;
    // "host:port" of the other end, for messages.
    std::string peer;

    // Sends every byte of head, then of body. Both go to the system in one call, so a short
    // frame leaves as one segment rather than a header segment and a body segment.
    qvUtil::Error send(asio::const_buffer head, asio::const_buffer body) {
        if (!socket.is_open())
            return qvUtil::Error(ErrorNotOpen, "Cannot write: the socket is not open");
        while (head.size() + body.size() > 0) {
            std::array<asio::const_buffer, 2> buffers{head, body};
            boost::system::error_code ec;
            std::size_t sent = socket.write_some(buffers, ec);
            if (ec == asio::error::interrupted)
                continue;
            if (ec)
                return qvUtil::Error(ErrorSystem, "Cannot write to %s: %s", peer.c_str(),
                                     ec.message().c_str());
            std::size_t fromHead = sent < head.size() ? sent : head.size();
            head += fromHead;
            body += sent - fromHead;
        }
        return {};
    }
};

Socket::Socket() : impl_(std::make_unique<Impl>()) {
}

Socket::Socket(Socket&& other) noexcept
    : impl_(std::move(other.impl_)), throwMode_(other.throwMode_),
      receiveTimeout_(other.receiveTimeout_) {
}

Socket& Socket::operator=(Socket&& other) noexcept {
    if (this != &other) {
        close();
        impl_ = std::move(other.impl_);
        throwMode_ = other.throwMode_;
        receiveTimeout_ = other.receiveTimeout_;
    }
    return *this;
}

Socket::~Socket() {
    close();
}

qvUtil::Error Socket::report(qvUtil::Error err) const {
    if (err.isError() && throwMode_)
        throw err;
    return err;
}

bool Socket::isOpen() const noexcept {
    return impl_ && impl_->socket.is_open();
}

void Socket::close() noexcept {
    if (!impl_ || !impl_->socket.is_open())
        return;
    boost::system::error_code ignored;
    impl_->socket.close(ignored);
}

NativeHandle Socket::nativeHandle() const noexcept {
    if (!isOpen())
        return -1;
    return toHandle(impl_->socket.native_handle());
}

NativeHandle Socket::releaseNativeHandle() noexcept {
    if (!isOpen())
        return -1;
    boost::system::error_code ec;
    auto handle = impl_->socket.release(ec);
    if (ec) {
        // The system cannot hand the socket over (Windows before 8.1): keep it closed rather
        // than leave the caller with a handle still tied to this process's socket services.
        close();
        return -1;
    }
    return toHandle(handle);
}

qvUtil::Error Socket::adopt(NativeHandle handle) {
    close();
    if (!impl_)
        impl_ = std::make_unique<Impl>();
    if (handle == -1)
        return qvUtil::Error(ErrorNotOpen, "Cannot take over socket handle -1");
    tcp::socket adopted(ioContext());
    boost::system::error_code ec;
    // The protocol only picks the socket's address family for later queries; reads, writes
    // and TCP_NODELAY are the same for both families.
    adopted.assign(tcp::v4(), static_cast<tcp::socket::native_handle_type>(handle), ec);
    if (ec)
        return qvUtil::Error(ErrorSystem, "Cannot take over socket handle %s: %s",
                             std::to_string(static_cast<long long>(handle)).c_str(),
                             ec.message().c_str());
    // A local socket pair has no TCP options to set; that is not a failure.
    boost::system::error_code ignored;
    adopted.set_option(tcp::no_delay(true), ignored);
    detail::prepareConnection(handle);
    tcp::endpoint peer = adopted.remote_endpoint(ec);
    impl_->peer =
        ec ? "socket " + std::to_string(static_cast<long long>(handle)) : endpointText(peer);
    impl_->socket = std::move(adopted);
    return {};
}

qvUtil::Error Socket::read(void* buffer, std::size_t n) {
    if (!isOpen())
        return report(qvUtil::Error(ErrorNotOpen, "Cannot read: the socket is not open"));
    auto* bytes = static_cast<unsigned char*>(buffer);
    Deadline deadline(receiveTimeout_);
    std::size_t done = 0;
    while (done < n) {
        if (deadline.limited) {
            int error = 0;
            int ready = waitUntil(nativeHandle(), detail::WaitFor::Read, deadline, error);
            if (ready == 0)
                return report(qvUtil::Error(
                    ErrorTimeout, "Timed out after %g s reading from %s (%s of %s bytes)",
                    receiveTimeout_, impl_->peer.c_str(), std::to_string(done).c_str(),
                    std::to_string(n).c_str()));
            if (ready < 0)
                return report(qvUtil::Error(ErrorSystem, "Cannot read from %s: %s",
                                            impl_->peer.c_str(), systemText(error).c_str()));
        }
        boost::system::error_code ec;
        done += impl_->socket.read_some(asio::buffer(bytes + done, n - done), ec);
        if (ec == asio::error::interrupted)
            continue;
        if (ec == asio::error::eof)
            return report(qvUtil::Error(
                ErrorPeerClosed, "Connection to %s closed by the peer after %s of %s bytes",
                impl_->peer.c_str(), std::to_string(done).c_str(), std::to_string(n).c_str()));
        if (ec)
            return report(qvUtil::Error(ErrorSystem, "Cannot read from %s: %s", impl_->peer.c_str(),
                                        ec.message().c_str()));
    }
    return {};
}

qvUtil::Error Socket::write(const void* buffer, std::size_t n) {
    if (!impl_)
        return report(qvUtil::Error(ErrorNotOpen, "Cannot write: the socket is not open"));
    return report(impl_->send(asio::const_buffer(), asio::const_buffer(buffer, n)));
}

qvUtil::Error Socket::read(qvString::CString& text) {
    unsigned char header[4];
    qvUtil::Error err = read(header, sizeof header);
    if (err.isError())
        return err;
    std::uint32_t length = std::uint32_t(header[0]) | std::uint32_t(header[1]) << 8 |
                           std::uint32_t(header[2]) << 16 | std::uint32_t(header[3]) << 24;
    if (length > MaxFrameBytes)
        return report(qvUtil::Error(
            ErrorFrameTooLong, "String of %u bytes from %s is longer than the limit of %u bytes",
            unsigned(length), impl_->peer.c_str(), unsigned(MaxFrameBytes)));
    qvString::CString received(length, '\0');
    err = read(received.data(), length);
    if (err.isError())
        return err;
    text.swap(received);
    return {};
}

qvUtil::Error Socket::write(const qvString::CString& text) {
    if (text.size() > MaxFrameBytes)
        return report(qvUtil::Error(ErrorFrameTooLong,
                                    "Cannot send a string of %s bytes: the limit is %u bytes",
                                    std::to_string(text.size()).c_str(), unsigned(MaxFrameBytes)));
    auto length = static_cast<std::uint32_t>(text.size());
    const unsigned char header[4] = {
        static_cast<unsigned char>(length), static_cast<unsigned char>(length >> 8),
        static_cast<unsigned char>(length >> 16), static_cast<unsigned char>(length >> 24)};
    if (!impl_)
        return report(qvUtil::Error(ErrorNotOpen, "Cannot write: the socket is not open"));
    return report(impl_->send(asio::const_buffer(header, sizeof header),
                              asio::const_buffer(text.data(), text.size())));
}

// --- ClientSocket ------------------------------------------------------------------------

ClientSocket::ClientSocket(const Address& address) : address_(address) {
}

qvUtil::Error ClientSocket::connect(double timeoutSeconds) {
    close();
    if (!impl_)
        impl_ = std::make_unique<Impl>();
    const char* host = address_.host().c_str();
    const int port = address_.port();
    if (address_.host().empty())
        return qvUtil::Error(ErrorBadAddress, "Cannot connect to port %d: no host given", port);
    if (port < 1 || port > 65535)
        return qvUtil::Error(ErrorBadAddress,
                             "Cannot connect to %s:%d: the port must be between 1 and 65535", host,
                             port);
    const Deadline deadline(timeoutSeconds);

    // A numeric address needs no lookup; a name may stand for several addresses (::1 and
    // 127.0.0.1 for "localhost"), tried in the order the system gives them.
    std::vector<tcp::endpoint> endpoints;
    boost::system::error_code ec;
    asio::ip::address numeric = asio::ip::make_address(address_.host(), ec);
    if (!ec) {
        endpoints.emplace_back(numeric, static_cast<unsigned short>(port));
    } else {
        tcp::resolver resolver(ioContext());
        auto results = resolver.resolve(address_.host(), std::to_string(port),
                                        tcp::resolver::numeric_service, ec);
        if (ec)
            return qvUtil::Error(ErrorSystem, "Cannot connect to %s:%d: %s", host, port,
                                 ec.message().c_str());
        for (const auto& entry : results)
            endpoints.push_back(entry.endpoint());
    }

    qvUtil::Error last(ErrorSystem, "Cannot connect to %s:%d: the host has no address", host, port);
    for (const tcp::endpoint& endpoint : endpoints) {
        tcp::socket socket(ioContext());
        int error = 0;
        socket.open(endpoint.protocol(), ec);
        if (ec) {
            last = qvUtil::Error(ErrorSystem, "Cannot connect to %s:%d: %s", host, port,
                                 ec.message().c_str());
            continue;
        }
        // The connect runs in the background while we wait for it with the time limit.
        socket.non_blocking(true, ec);
        const NativeHandle handle = toHandle(socket.native_handle());
        int started =
            ec ? -1 : detail::beginConnect(handle, endpoint.data(), endpoint.size(), error);
        if (ec)
            error = ec.value();
        if (started == 1) {
            int ready = waitUntil(handle, detail::WaitFor::Write, deadline, error);
            if (ready == 0)
                return qvUtil::Error(ErrorTimeout, "Cannot connect to %s:%d: no answer within %g s",
                                     host, port, timeoutSeconds);
            started = ready < 0 ? -1 : 0;
            if (ready > 0 && (error = detail::connectResult(handle)) != 0)
                started = -1;
        }
        if (started == 0) {
            socket.non_blocking(false, ec);
            if (!ec)
                socket.set_option(tcp::no_delay(true), ec);
            if (ec)
                error = ec.value();
            else if ((error = detail::prepareConnection(handle)) == 0) {
                impl_->socket = std::move(socket);
                impl_->peer = address_.host() + ":" + std::to_string(port);
                return {};
            }
        }
        last = qvUtil::Error(ErrorSystem, "Cannot connect to %s:%d: %s", host, port,
                             systemText(error).c_str());
    }
    return last;
}

// --- Server ------------------------------------------------------------------------------

struct Server::Impl {
    Impl() : acceptor(ioContext()) {}
    tcp::acceptor acceptor;
};

Server::Server(int port, int backlog)
    : impl_(std::make_unique<Impl>()), port_(port), backlog_(backlog) {
}

Server::~Server() {
    close();
}

void Server::close() noexcept {
    if (!impl_->acceptor.is_open())
        return;
    boost::system::error_code ignored;
    impl_->acceptor.close(ignored);
}

bool Server::isListening() const noexcept {
    return impl_->acceptor.is_open();
}

NativeHandle Server::nativeHandle() const noexcept {
    return isListening() ? toHandle(impl_->acceptor.native_handle()) : -1;
}

qvUtil::Error Server::listen() {
    close();
    if (port_ < -1 || port_ > 65535)
        return qvUtil::Error(ErrorBadAddress,
                             "Cannot listen on port %d: the port must be -1 (any free port) or "
                             "between 0 and 65535",
                             port_);
    const tcp::endpoint endpoint(loopbackOnly_ ? asio::ip::address(asio::ip::address_v4::loopback())
                                               : asio::ip::address(asio::ip::address_v4::any()),
                                 static_cast<unsigned short>(port_ < 0 ? 0 : port_));
    tcp::acceptor& acceptor = impl_->acceptor;
    boost::system::error_code ec;
    int error = 0;
    acceptor.open(endpoint.protocol(), ec);
    if (!ec && (error = detail::prepareListener(toHandle(acceptor.native_handle()))) == 0) {
        acceptor.bind(endpoint, ec);
        if (!ec)
            acceptor.listen(backlog_ < 1 ? 1 : backlog_, ec);
        // Non-blocking, so that a connection withdrawn between the wait and the accept
        // sends accept back to waiting instead of blocking past the caller's time limit.
        if (!ec)
            acceptor.non_blocking(true, ec);
        if (!ec) {
            tcp::endpoint bound = acceptor.local_endpoint(ec);
            if (!ec) {
                port_ = bound.port();
                return {};
            }
        }
    }
    const std::string text = ec ? ec.message() : systemText(error);
    close();
    return qvUtil::Error(ErrorSystem, "Cannot listen on %s: %s", endpointText(endpoint).c_str(),
                         text.c_str());
}

qvUtil::Error Server::accept(double seconds, std::unique_ptr<Socket>& socket) {
    socket.reset();
    if (!isListening())
        return qvUtil::Error(ErrorNotOpen, "Cannot accept on port %d: the server is not listening",
                             port_);
    const Deadline deadline(seconds);
    const NativeHandle handle = nativeHandle();
    for (;;) {
        int error = 0;
        int ready = waitUntil(handle, detail::WaitFor::Read, deadline, error);
        if (ready == 0)
            return {};
        if (ready < 0)
            return qvUtil::Error(ErrorSystem, "Cannot accept on port %d: %s", port_,
                                 systemText(error).c_str());
        auto accepted = std::make_unique<Socket>();
        tcp::endpoint peer;
        boost::system::error_code ec;
        impl_->acceptor.accept(accepted->impl_->socket, peer, ec);
        if (ec == asio::error::would_block || ec == asio::error::try_again ||
            ec == asio::error::interrupted || ec == asio::error::connection_aborted)
            continue;
        // The accepted socket may inherit the listener's non-blocking mode (Windows does).
        if (!ec)
            accepted->impl_->socket.non_blocking(false, ec);
        if (!ec)
            accepted->impl_->socket.set_option(tcp::no_delay(true), ec);
        if (!ec)
            error = detail::prepareConnection(accepted->nativeHandle());
        if (ec || error)
            return qvUtil::Error(ErrorSystem, "Cannot accept on port %d: %s", port_,
                                 ec ? ec.message().c_str() : systemText(error).c_str());
        accepted->impl_->peer = endpointText(peer);
        socket = std::move(accepted);
        return {};
    }
}

} // namespace qvTCP
