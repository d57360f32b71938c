// qvTCP: blocking TCP connections between processes of one machine. A Server listens and
// accepts, a ClientSocket connects, and both ends then talk through a Socket: raw reads and
// writes of exactly n bytes, and strings framed as a 32-bit little-endian length and the bytes.
//
//     qvTCP::Server server;                       // any free port
//     server.setLoopbackOnly();
//     server.listen();                            // then tell the peer server.getPort()
//     std::unique_ptr<qvTCP::Socket> peer;
//     server.accept(5.0, peer);                   // null peer: nobody came within 5 s
//
// Every connection has TCP_NODELAY set, so a short request and its short reply are never held
// back waiting for more data. A peer that goes away (also in the middle of a frame) makes the
// read or write in progress fail with an error; it never hangs and never raises SIGPIPE.
// Both platforms behave alike, except where a contract below says otherwise. One thread uses
// a socket at a time.
#ifndef BASE_QVTCP_SOCKET_H
#define BASE_QVTCP_SOCKET_H

#include <cstddef>
#include <cstdint>
#include <memory>

#include "Base/BaseExport.h"
#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"

namespace qvTCP {

/// The codes of the errors qvTCP returns. Every message names the host and port (or the
/// operation) and, where the system refused, carries the system's own text.
enum ErrorCode : int {
    ErrorSystem = 1,       ///< the system refused: unknown host, connection refused or reset, ...
    ErrorTimeout = 2,      ///< a connect or a read with a receive timeout ran out of time
    ErrorPeerClosed = 3,   ///< the peer closed the connection before all bytes arrived
    ErrorFrameTooLong = 4, ///< a string frame longer than Socket::MaxFrameBytes
    ErrorNotOpen = 5,      ///< the socket or server is closed, or was never opened
    ErrorBadAddress = 6,   ///< a port outside 0..65535 (or 0 where a real port is needed)
};

/// The system's handle of a socket (a file descriptor on POSIX, a SOCKET on Windows), widened
/// so one type serves both; -1 stands for "none".
using NativeHandle = std::intptr_t;

/// Where to connect: a host (a name such as "localhost" or a numeric address) and a port.
/// Nothing is checked or resolved until ClientSocket::connect.
class BASE_API Address {
public:
    /// Stores host and port as given.
    Address(const qvString::CString& host, int port);
    /// "127.0.0.1" and port.
    static Address loopback(int port);

    /// The host as given (a name or a dotted address), not resolved.
    const qvString::CString& host() const noexcept { return host_; }
    /// The port as given; checked only by ClientSocket::connect.
    int port() const noexcept { return port_; }

private:
    qvString::CString host_;
    int port_;
};

/// One end of a connection. A Socket comes from Server::accept, or is a ClientSocket after
/// connect. The socket owns its connection and closes it when destroyed.
///
/// Errors: every read and write returns an empty error on success. On failure it returns the
/// error (codes above) or, in throwing mode, throws that qvUtil::Error instead. After a
/// failed read or write the connection is out of step with its peer (bytes may have been
/// half-sent or half-read): close it.
class BASE_API Socket {
public:
    /// The longest string frame read(CString&) accepts and write(const CString&) sends: 1 MiB.
    static constexpr std::uint32_t MaxFrameBytes = 1u << 20;

    /// An unconnected socket: isOpen() is false and every read or write fails with ErrorNotOpen.
    Socket();
    /// Takes over other's connection and settings; other is left unconnected.
    Socket(Socket&& other) noexcept;
    /// Closes this socket's connection, then takes over other's.
    Socket& operator=(Socket&& other) noexcept;
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    /// Closes the connection.
    virtual ~Socket();

    /// Reads exactly n bytes into buffer (n = 0 succeeds at once; buffer may then be null).
    /// Blocks until they are all there, the peer closes (ErrorPeerClosed), the connection fails
    /// (ErrorSystem) or the receive timeout runs out (ErrorTimeout). The buffer's contents
    /// are unspecified after a failure.
    qvUtil::Error read(void* buffer, std::size_t n);
    /// Writes exactly n bytes from buffer. Blocks until the system has taken them all. A peer
    /// that is gone gives ErrorSystem (never SIGPIPE).
    qvUtil::Error write(const void* buffer, std::size_t n);

    /// Reads one string frame: a 32-bit little-endian length, then that many bytes. A length
    /// above MaxFrameBytes is refused with ErrorFrameTooLong before anything is allocated; its
    /// bytes are left unread, so the connection must then be closed. text is replaced only on
    /// success and left unchanged on any failure.
    qvUtil::Error read(qvString::CString& text);
    /// Writes text as one string frame. Text longer than MaxFrameBytes is refused with
    /// ErrorFrameTooLong before anything is sent, so the connection stays in step.
    qvUtil::Error write(const qvString::CString& text);

    /// In throwing mode a failed read or write throws its qvUtil::Error instead of returning it.
    /// Off by default. Nothing else in qvTCP throws.
    void setThrowMode(bool on) noexcept { throwMode_ = on; }
    /// Whether failed reads and writes throw (setThrowMode).
    bool throwMode() const noexcept { return throwMode_; }

    /// Bounds how long each later read waits for data to arrive (seconds; 0, the default, waits
    /// without limit). A read that runs out fails with ErrorTimeout.
    void setReceiveTimeout(double seconds) noexcept { receiveTimeout_ = seconds > 0 ? seconds : 0; }
    /// The receive timeout in seconds; 0 waits without limit.
    double receiveTimeout() const noexcept { return receiveTimeout_; }

    /// Closes the connection; the peer then sees the end of the stream. Closing twice is harmless.
    void close() noexcept;
    /// True from a successful connect (or accept) until close().
    bool isOpen() const noexcept;

    /// The system's handle of the connection, -1 when closed. The socket still owns it.
    NativeHandle nativeHandle() const noexcept;
    /// Gives up the connection: returns its handle (-1 when closed), which the caller now owns
    /// and must close, e.g. after handing it to an event loop of its own. The socket is closed.
    /// Windows before 8.1 cannot hand a socket over: there the connection is closed and -1
    /// returned.
    NativeHandle releaseNativeHandle() noexcept;
    /// Closes the present connection and takes over handle, a connected stream socket (one
    /// accepted by an event loop of the caller's, or one end of a local socket pair), which the
    /// socket then owns and closes. TCP_NODELAY is set where the handle is a TCP socket.
    /// Errors: ErrorNotOpen for -1; ErrorSystem when the system refuses the handle, which the
    /// caller then still owns. Never throws.
    qvUtil::Error adopt(NativeHandle handle);

protected:
    struct Impl;
    /// The connection; null only in a moved-from socket.
    std::unique_ptr<Impl> impl_;
    /// Returns err, or throws it when err is an error and throwing mode is on.
    qvUtil::Error report(qvUtil::Error err) const;

private:
    friend class Server;
    bool throwMode_ = false;
    double receiveTimeout_ = 0;
};

/// The connecting end: remembers the address and connects to it on request.
class BASE_API ClientSocket : public Socket {
public:
    /// Nothing happens before connect.
    explicit ClientSocket(const Address& address);

    /// Resolves the address and connects, trying each address the host name resolves to
    /// in turn, all within timeoutSeconds (0 = no limit beyond the system's own). Connecting
    /// again first closes the present connection. Errors (never thrown, whatever the throwing
    /// mode): ErrorBadAddress for a port outside 1..65535; ErrorSystem for an unknown host or
    /// a refused connection; ErrorTimeout when no connection was made in time. Each message
    /// names host and port.
    qvUtil::Error connect(double timeoutSeconds = 5.0);

    /// The address given at construction.
    const Address& address() const noexcept { return address_; }

private:
    Address address_;
};

/// The listening end. Accepts connections one at a time; each becomes a Socket of its own.
class BASE_API Server {
public:
    /// port: the port to listen on, or -1 (or 0) for any free port, chosen at listen.
    /// backlog: how many connections the system may hold for accept (at least 1 is used).
    /// Nothing happens before listen.
    Server(int port = -1, int backlog = 1);
    /// Closes the listening socket; sockets already accepted stay open.
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Listen on the loopback interface only (127.0.0.1), so that other machines cannot
    /// connect; otherwise on every IPv4 interface. Takes effect at the next listen.
    void setLoopbackOnly(bool on = true) noexcept { loopbackOnly_ = on; }

    /// Opens the listening socket. Errors: ErrorBadAddress for a port outside -1..65535;
    /// ErrorSystem (with the port and the system's text) when the port is taken or the
    /// system refuses. Listening again first closes the present listening socket.
    /// POSIX: a fixed port can be listened on again at once after a previous server on it
    /// closed, even while its old connections linger. Windows: the port is held exclusively, so
    /// no other process can take it over while the server listens.
    qvUtil::Error listen();
    /// The port listened on (the chosen one when any free port was asked for); before a
    /// successful listen, the port given to the constructor.
    int getPort() const noexcept { return port_; }

    /// Waits up to seconds (0 = no limit) for a connection and returns it in socket, with
    /// TCP_NODELAY set. When the time runs out: an empty error and a null socket. Errors
    /// (socket null): ErrorNotOpen before listen or after close; ErrorSystem when the system
    /// refuses. Never throws.
    qvUtil::Error accept(double seconds, std::unique_ptr<Socket>& socket);

    /// Stops listening; later connection attempts are refused. Closing twice is harmless.
    void close() noexcept;
    /// True between a successful listen and close().
    bool isListening() const noexcept;

    /// The system's handle of the listening socket, -1 when not listening. The server keeps it.
    NativeHandle nativeHandle() const noexcept;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
    int port_;
    int backlog_;
    bool loopbackOnly_ = false;
};

} // namespace qvTCP

#endif
