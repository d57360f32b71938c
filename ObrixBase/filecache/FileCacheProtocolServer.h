// The server's end of the cache protocol: readRequest decodes one request, calls the matching
// operation, which the server's implementation supplies, and writes its reply. Suits a server
// that gives each client a thread of its own; a test stands one up in a few lines:
//
//     class Store : public qvObrixBase::FileCacheProtocolServer { ... five operations ... };
//     Store store; store.setSocket(*accepted);
//     try { for (;;) store.readRequest(); } catch (const qvUtil::Error&) {} // client gone
#ifndef OBRIX_FILECACHE_FILECACHEPROTOCOLSERVER_H
#define OBRIX_FILECACHE_FILECACHEPROTOCOLSERVER_H

#include "ObrixBase/filecache/FileCacheProtocol.h"

namespace qvObrixBase {

/// Decodes requests; the five operations stay abstract.
class OBRIX_API FileCacheProtocolServer : public FileCacheProtocol {
public:
    FileCacheProtocolServer() = default;
    ///@{
    /// Copies share the socket, as FileCacheProtocol's do.
    FileCacheProtocolServer(const FileCacheProtocolServer&) = default;
    FileCacheProtocolServer(FileCacheProtocolServer&&) = default;
    FileCacheProtocolServer& operator=(const FileCacheProtocolServer&) = default;
    FileCacheProtocolServer& operator=(FileCacheProtocolServer&&) = default;
    ///@}
    ~FileCacheProtocolServer() override;

    /// Reads one request code and serves that request. An unknown code is consumed alone and
    /// answered with nothing: the stream is then out of step, and the bytes that follow are
    /// read as the next request. Throws the socket's qvUtil::Error when a read or write fails
    /// (the client went away, or sent a frame longer than qvTCP::Socket::MaxFrameBytes).
    void readRequest();

private:
    void recvInitialize();
    void recvAcquire();
    void recvAdd();
    void recvRelease();
    void recvSetAccessed();
};

} // namespace qvObrixBase

#endif
