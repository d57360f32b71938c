// The cache server's event loop. Started by an application with "--port N", it connects back
// to that port and serves the application; the first Initialize request names the cache
// directory. One server owns a directory at a time, through an operating-system file lock
// ("owner.lck") that dies with it. The owner keeps the index, listens on its own loopback
// port for later clients and writes that port into "lockfile.lck". A server that finds the
// directory owned by another relays its client's bytes to the owner unchanged, so every
// client of a directory is served by one bookkeeper and every hold is seen by the one that
// evicts.
#ifndef QVCACHED_CACHESERVER_H
#define QVCACHED_CACHESERVER_H

#include <string>

namespace qvcached {

struct ServerOptions {
    int port = 0;             ///< the application's port to connect back to
    double idleSeconds = 600; ///< the owner exits after this long without clients
};

/// Runs the server until it is idle (owner) or its one client has gone (relay). Returns the
/// process's exit status; `error` gets a one-line reason when it is not 0.
int runServer(const ServerOptions& options, std::string& error);

/// Writes `text` to `path` through a temporary beside it and a rename, so that readers see
/// the old content or the new, never a part. The file is for the user alone.
bool writeFileAtomically(const std::string& path, const std::string& text);

} // namespace qvcached

#endif
