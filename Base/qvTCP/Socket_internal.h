// The few socket calls that Boost.Asio leaves to us: waiting with a time limit, a connect that
// can be abandoned, and the options that differ between the systems. Socket_posix.cpp and
// Socket_win32.cpp each provide them; Socket.cpp holds everything that is the same on both.
#ifndef BASE_QVTCP_SOCKET_INTERNAL_H
#define BASE_QVTCP_SOCKET_INTERNAL_H

#include <cstddef>

#include "Base/qvTCP/Socket.h"

namespace qvTCP::detail {

enum class WaitFor { Read, Write };

/// Waits until handle is readable (data, a pending connection or the end of the stream) or
/// writable (for a connect in progress: finished, well or badly), for at most milliseconds
/// (negative: no limit). Returns 1 when ready; 0 when the time ran out or a signal cut the
/// wait short (the caller checks its own deadline and waits again); -1 on failure, with the
/// system's error number in error.
int waitReady(NativeHandle handle, WaitFor what, int milliseconds, int& error);

/// Starts connecting the non-blocking socket handle to the socket address (address, length).
/// Returns 0 when connected at once, 1 when the connect goes on in the background (wait for
/// WaitFor::Write, then ask connectResult), -1 on failure with the error number in error.
int beginConnect(NativeHandle handle, const void* address, std::size_t length, int& error);

/// The outcome of a background connect once the socket is writable: 0 when connected,
/// otherwise the system's error number.
int connectResult(NativeHandle handle);

/// Sets what a listening socket needs before bind: POSIX lets a restarted server take its
/// fixed port again at once; Windows keeps the port from being taken over by another
/// process. Like every socket here it is kept from child processes. Returns 0, or the
/// system's error number.
int prepareListener(NativeHandle handle);

/// Sets what every connection needs beyond TCP_NODELAY: it is kept from child processes (a
/// helper started later must not hold a connection, or its server, open), and on systems
/// whose sends can raise SIGPIPE that is turned off. Returns 0, or the system's error number.
int prepareConnection(NativeHandle handle);

} // namespace qvTCP::detail

#endif
