// The cache protocol as the server's event loop sees it: bytes arrive in pieces, so a request
// is decoded only once all of it is there, and replies are appended to an outgoing buffer.
// The layout is FileCacheProtocol's (ObrixBase/filecache/FileCacheProtocol.h), byte for byte.
#ifndef QVCACHED_WIREFORMAT_H
#define QVCACHED_WIREFORMAT_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "ObrixBase/filecache/FileCacheProtocol.h"

namespace qvcached {

/// One decoded request. Which fields count depends on the code: Initialize uses text (the
/// directory), number and number64; Acquire and SetAccessed text (the key); Add text and path;
/// Release text and flag.
struct Request {
    qvObrixBase::FileCacheRequest code = qvObrixBase::FileCacheRequest::Initialize;
    std::string text;
    std::string path;
    std::int32_t number = 0;
    std::int64_t number64 = 0;
    bool flag = false;
};

enum class DecodeStatus {
    Incomplete,   ///< more bytes are needed; nothing was taken
    Complete,     ///< request is filled and `used` bytes were taken
    UnknownCode,  ///< the 4-byte code alone was taken; no reply is due
    FrameTooLong, ///< a string frame is longer than the socket layer accepts: drop the client
};

/// Decodes the request at the front of data[0, size). Every string length is checked against
/// qvTCP::Socket::MaxFrameBytes before any byte of it is copied, so no input makes this
/// allocate more than that per string.
DecodeStatus decodeRequest(const char* data, std::size_t size, Request& request, std::size_t& used);

/// Reply values, appended in the wire's layout.
void putInt(std::string& out, std::int32_t value);
void putInt64(std::string& out, std::int64_t value);
void putBool(std::string& out, bool value);
void putString(std::string& out, const std::string& text);
void putError(std::string& out, int code, const std::string& message);

} // namespace qvcached

#endif
