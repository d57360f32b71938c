// The POSIX bodies of the socket calls that Boost.Asio leaves to us.
#include "Base/qvTCP/Socket_internal.h"

#include <cerrno>

#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

namespace qvTCP::detail {

int waitReady(NativeHandle handle, WaitFor what, int milliseconds, int& error) {
    pollfd entry{};
    entry.fd = static_cast<int>(handle);
    entry.events = what == WaitFor::Read ? POLLIN : POLLOUT;
    int result = ::poll(&entry, 1, milliseconds < 0 ? -1 : milliseconds);
    if (result > 0)
        return 1; // POLLERR and POLLHUP count as ready: the next call reports them
    if (result == 0 || errno == EINTR)
        return 0;
    error = errno;
    return -1;
}

int beginConnect(NativeHandle handle, const void* address, std::size_t length, int& error) {
    if (::connect(static_cast<int>(handle), static_cast<const sockaddr*>(address),
                  static_cast<socklen_t>(length)) == 0)
        return 0;
    // EINTR: the connect goes on in the background just as with EINPROGRESS.
    if (errno == EINPROGRESS || errno == EINTR)
        return 1;
    error = errno;
    return -1;
}

int connectResult(NativeHandle handle) {
    int pending = 0;
    socklen_t size = sizeof pending;
    if (::getsockopt(static_cast<int>(handle), SOL_SOCKET, SO_ERROR, &pending, &size) != 0)
        return errno;
    return pending;
}

namespace {

// Sockets stay open in a program started later only by mistake: a cache server whose client
// socket lives on in a long-running child would never see its last client leave.
int keepFromChildren(NativeHandle handle) {
    const int fd = static_cast<int>(handle);
    const int flags = ::fcntl(fd, F_GETFD);
    if (flags < 0 || ::fcntl(fd, F_SETFD, flags | FD_CLOEXEC) != 0)
        return errno;
    return 0;
}

} // namespace

int prepareListener(NativeHandle handle) {
    if (const int error = keepFromChildren(handle))
        return error;
    // Connections of a previous server on the same fixed port may linger in TIME_WAIT; without
    // SO_REUSEADDR a restarted server could not listen there for minutes.
    int on = 1;
    if (::setsockopt(static_cast<int>(handle), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0)
        return errno;
    return 0;
}

int prepareConnection(NativeHandle handle) {
    if (const int error = keepFromChildren(handle))
        return error;
        // Linux: Boost.Asio sends with MSG_NOSIGNAL, so a write to a vanished peer returns EPIPE
        // instead of raising SIGPIPE. Systems without that flag have the socket option instead.
#if defined(SO_NOSIGPIPE)
    int on = 1;
    if (::setsockopt(static_cast<int>(handle), SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on) != 0)
        return errno;
#endif
    return 0;
}

} // namespace qvTCP::detail
