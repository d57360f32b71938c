// The Windows bodies of the socket calls that Boost.Asio leaves to us. Boost.Asio starts
// Winsock (WSAStartup) before any socket is made, so nothing here needs to.
#include "Base/qvTCP/Socket_internal.h"

#include <winsock2.h>

namespace qvTCP::detail {

namespace {
SOCKET toSocket(NativeHandle handle) {
    return static_cast<SOCKET>(handle);
}
} // namespace

int waitReady(NativeHandle handle, WaitFor what, int milliseconds, int& error) {
    // select rather than WSAPoll: WSAPoll does not report a refused connect on older systems.
    // A failed connect shows in the exception set, not the write set.
    fd_set ready;
    fd_set failed;
    FD_ZERO(&ready);
    FD_ZERO(&failed);
    FD_SET(toSocket(handle), &ready);
    FD_SET(toSocket(handle), &failed);
    timeval limit{};
    limit.tv_sec = milliseconds / 1000;
    limit.tv_usec = (milliseconds % 1000) * 1000;
    int result = ::select(
        0, what == WaitFor::Read ? &ready : nullptr, what == WaitFor::Write ? &ready : nullptr,
        what == WaitFor::Write ? &failed : nullptr, milliseconds < 0 ? nullptr : &limit);
    if (result > 0)
        return 1;
    if (result == 0)
        return 0;
    error = ::WSAGetLastError();
    return error == WSAEINTR ? 0 : -1;
}

int beginConnect(NativeHandle handle, const void* address, std::size_t length, int& error) {
    if (::connect(toSocket(handle), static_cast<const sockaddr*>(address),
                  static_cast<int>(length)) == 0)
        return 0;
    error = ::WSAGetLastError();
    return error == WSAEWOULDBLOCK || error == WSAEINPROGRESS ? 1 : -1;
}

int connectResult(NativeHandle handle) {
    int pending = 0;
    int size = sizeof pending;
    if (::getsockopt(toSocket(handle), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&pending),
                     &size) != 0)
        return ::WSAGetLastError();
    return pending;
}

namespace {

// Sockets are inheritable by default; a program started later would keep this one open (and a
// cache server whose client socket lives on in a long-running child never sees it leave).
int keepFromChildren(NativeHandle handle) {
    if (!::SetHandleInformation(reinterpret_cast<HANDLE>(toSocket(handle)), HANDLE_FLAG_INHERIT, 0))
        return static_cast<int>(::GetLastError());
    return 0;
}

} // namespace

int prepareListener(NativeHandle handle) {
    if (const int error = keepFromChildren(handle))
        return error;
    // Windows lets a later socket with SO_REUSEADDR take over a port that is in use; holding
    // the port exclusively keeps another process from stealing the server's clients.
    BOOL on = TRUE;
    if (::setsockopt(toSocket(handle), SOL_SOCKET, SO_EXCLUSIVEADDRUSE,
                     reinterpret_cast<const char*>(&on), sizeof on) != 0)
        return ::WSAGetLastError();
    return 0;
}

int prepareConnection(NativeHandle handle) {
    // Windows has no SIGPIPE: a write to a vanished peer fails with WSAECONNRESET.
    return keepFromChildren(handle);
}

} // namespace qvTCP::detail
