// The application's end of the cache protocol: each operation is one request and its reply on
// the socket given to setSocket. Exchanges never throw: a failed exchange reads as a refusal
// (false, nothing found) or, for initialize, as the socket's error.
#ifndef OBRIX_FILECACHE_FILECACHEPROTOCOLCLIENT_H
#define OBRIX_FILECACHE_FILECACHEPROTOCOLCLIENT_H

#include "ObrixBase/filecache/FileCacheProtocol.h"

namespace qvObrixBase {

/// Sends the five requests. Without a socket every exchange fails as a broken one would.
class OBRIX_API FileCacheProtocolClient : public FileCacheProtocol {
public:
    FileCacheProtocolClient() = default;
    ///@{
    /// Copies share the socket, as FileCacheProtocol's do.
    FileCacheProtocolClient(const FileCacheProtocolClient&) = default;
    FileCacheProtocolClient(FileCacheProtocolClient&&) = default;
    FileCacheProtocolClient& operator=(const FileCacheProtocolClient&) = default;
    FileCacheProtocolClient& operator=(FileCacheProtocolClient&&) = default;
    ///@}
    ~FileCacheProtocolClient() override;

    /// Returns the server's error, or the socket's error when the exchange failed.
    qvUtil::Error initialize(const qvString::CString& directory, int maxEntries,
                             std::int64_t maxBytes) override;
    /// The same exchange, telling the two outcomes apart: true when the server answered
    /// (`answer` is its error, empty on success), false when the exchange broke off
    /// (`answer` is the socket's error).
    bool tryInitialize(const qvString::CString& directory, int maxEntries, std::int64_t maxBytes,
                       qvUtil::Error& answer);
    /// Writes the reply's path and time into the caller's variables (also when not found, and
    /// partly when the exchange broke off); false when not found or on any failure.
    bool acquire(const qvString::CString& key, qvString::CString& path,
                 std::int64_t& accessTime) override;
    /// The server's answer; false on any failure.
    bool add(const qvString::CString& key, const qvString::CString& path) override;
    /// The server's answer; false on any failure.
    bool release(const qvString::CString& key, bool removeFile) override;
    /// Failures are swallowed.
    void setAccessed(const qvString::CString& key) override;
};

} // namespace qvObrixBase

#endif
