// The wire protocol between an application's file cache and the cache server "qvcached".
// FileCacheProtocol writes and reads the protocol's values on a qvTCP::Socket; its five
// operations are the cache's requests. FileCacheProtocolClient sends them and
// FileCacheProtocolServer decodes them for a server's own implementation. A request is its
// code (an int) followed by its fields; every value travels in the machine's byte order:
//
//     code  request       fields              reply
//     0     Initialize    string, int, int64  error (int code, string message)
//     1     Acquire       string key          string path, int64 access time, bool found
//     2     Add           string key, path    bool accepted
//     3     Release       string key, bool    bool
//     4     SetAccessed   string key          int, always 0
//
// An int is 4 bytes, an int64 8 bytes, a bool 4 bytes (0 or 1; any non-zero value reads as
// true) and a string the socket's own frame: a 32-bit length, then the bytes.
#ifndef OBRIX_FILECACHE_FILECACHEPROTOCOL_H
#define OBRIX_FILECACHE_FILECACHEPROTOCOL_H

#include <cstdint>

#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"
#include "ObrixBase/ObrixExport.h"

namespace qvTCP {
class Socket;
}

namespace qvObrixBase {

/// The request codes on the wire.
enum class FileCacheRequest : std::int32_t {
    Initialize = 0,
    Acquire = 1,
    Add = 2,
    Release = 3,
    SetAccessed = 4,
};

/// The protocol's shared base: the socket (not owned) and the value primitives. Copies share
/// the socket pointer. One request is in flight at a time; one thread uses the object.
class OBRIX_API FileCacheProtocol {
public:
    /// The name of the lock file in the cache directory that holds the running server's port
    /// as decimal text.
    static constexpr char LockFileName[] = "lockfile.lck";

    FileCacheProtocol() = default;
    ///@{
    /// Copies use the same socket as the original (never owned by either).
    FileCacheProtocol(const FileCacheProtocol&) = default;
    FileCacheProtocol(FileCacheProtocol&&) = default;
    FileCacheProtocol& operator=(const FileCacheProtocol&) = default;
    FileCacheProtocol& operator=(FileCacheProtocol&&) = default;
    ///@}
    virtual ~FileCacheProtocol();

    /// Prepares the cache in `directory`; the int and the int64 are the server's settings and
    /// are passed on unchanged. Returns the server's error, or an empty one.
    virtual qvUtil::Error initialize(const qvString::CString& directory, int, std::int64_t) = 0;
    /// Looks `key` up; when found, fills `path` and `accessTime` (seconds since 1970 UTC) and
    /// the caller holds the entry until it releases the key.
    virtual bool acquire(const qvString::CString& key, qvString::CString& path,
                         std::int64_t& accessTime) = 0;
    /// Announces the file at `path` under `key`; true when accepted (the caller then holds it).
    virtual bool add(const qvString::CString& key, const qvString::CString& path) = 0;
    /// Ends one hold of `key`; with `removeFile` the file goes once nobody holds it.
    virtual bool release(const qvString::CString& key, bool removeFile) = 0;
    /// Records a use of `key` now.
    virtual void setAccessed(const qvString::CString& key) = 0;

    /// Uses `socket` (not owned; it must outlive its use here) and switches it to throwing
    /// mode, so that every failed read or write below throws its qvUtil::Error.
    void setSocket(qvTCP::Socket& socket);
    /// The socket in use; null before setSocket.
    qvTCP::Socket* socket() const noexcept { return socket_; }

protected:
    ///@{
    /// Each primitive writes or reads exactly the bytes tabled above and throws the socket's
    /// qvUtil::Error on failure (also when no socket is set).
    void sendInt(int value);
    int recvInt();
    void sendInt64(std::int64_t value);
    std::int64_t recvInt64();
    void sendBool(bool value);
    bool recvBool();
    void sendString(const qvString::CString& text);
    qvString::CString recvString();
    void sendError(const qvUtil::Error& error);
    ///@}
    /// Code 0 gives an empty error whatever the text. Otherwise the text is the message's
    /// format, applied with no arguments: "%%" reads as "%", and any other directive stays as
    /// written (there is nothing it could print).
    qvUtil::Error recvError();

private:
    qvTCP::Socket& checkedSocket() const;

    qvTCP::Socket* socket_ = nullptr;
};

} // namespace qvObrixBase

#endif
