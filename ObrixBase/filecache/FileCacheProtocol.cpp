#include "ObrixBase/filecache/FileCacheProtocol.h"

#include <cstring>

#include "Base/qvTCP/Socket.h"

namespace qvObrixBase {

FileCacheProtocol::~FileCacheProtocol() = default;

void FileCacheProtocol::setSocket(qvTCP::Socket& socket) {
    socket_ = &socket;
    socket.setThrowMode(true);
}

qvTCP::Socket& FileCacheProtocol::checkedSocket() const {
    if (!socket_)
        throw qvUtil::Error(1, "file cache: no connection to a cache server");
    return *socket_;
}

// The integers are copied through memcpy in the machine's own byte order: both ends run on
// the same machine, and the wire carries no padding.
void FileCacheProtocol::sendInt(int value) {
    std::int32_t v = value;
    checkedSocket().write(&v, sizeof v);
}

int FileCacheProtocol::recvInt() {
    std::int32_t v = 0;
    checkedSocket().read(&v, sizeof v);
    return v;
}

void FileCacheProtocol::sendInt64(std::int64_t value) {
    checkedSocket().write(&value, sizeof value);
}

std::int64_t FileCacheProtocol::recvInt64() {
    std::int64_t v = 0;
    checkedSocket().read(&v, sizeof v);
    return v;
}

void FileCacheProtocol::sendBool(bool value) {
    sendInt(value ? 1 : 0);
}

bool FileCacheProtocol::recvBool() {
    return recvInt() != 0;
}

void FileCacheProtocol::sendString(const qvString::CString& text) {
    checkedSocket().write(text);
}

qvString::CString FileCacheProtocol::recvString() {
    qvString::CString text;
    checkedSocket().read(text);
    return text;
}

void FileCacheProtocol::sendError(const qvUtil::Error& error) {
    sendInt(error.code());
    sendString(error.message());
}

qvUtil::Error FileCacheProtocol::recvError() {
    const int code = recvInt();
    qvString::CString text = recvString();
    if (code == 0)
        return {};
    // The sender's text is a format with no arguments: only "%%" has a meaning of its own.
    qvString::CString message;
    message.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        message += text[i];
        if (text[i] == '%' && i + 1 < text.size() && text[i + 1] == '%')
            ++i;
    }
    return qvUtil::Error(code, "%s", message.c_str());
}

} // namespace qvObrixBase
