#include "ObrixBase/filecache/FileCacheProtocolServer.h"

namespace qvObrixBase {

FileCacheProtocolServer::~FileCacheProtocolServer() = default;

void FileCacheProtocolServer::readRequest() {
    switch (recvInt()) {
    case static_cast<int>(FileCacheRequest::Initialize):
        recvInitialize();
        break;
    case static_cast<int>(FileCacheRequest::Acquire):
        recvAcquire();
        break;
    case static_cast<int>(FileCacheRequest::Add):
        recvAdd();
        break;
    case static_cast<int>(FileCacheRequest::Release):
        recvRelease();
        break;
    case static_cast<int>(FileCacheRequest::SetAccessed):
        recvSetAccessed();
        break;
    default:
        // An unknown code carries no length to skip by; what follows is read as a new
        // request rather than guessed at.
        break;
    }
}

void FileCacheProtocolServer::recvInitialize() {
    const qvString::CString directory = recvString();
    const int maxEntries = recvInt();
    const std::int64_t maxBytes = recvInt64();
    sendError(initialize(directory, maxEntries, maxBytes));
}

void FileCacheProtocolServer::recvAcquire() {
    const qvString::CString key = recvString();
    qvString::CString path;
    std::int64_t accessTime = 0;
    const bool found = acquire(key, path, accessTime);
    sendString(path);
    sendInt64(accessTime);
    sendBool(found);
}

void FileCacheProtocolServer::recvAdd() {
    const qvString::CString key = recvString();
    const qvString::CString path = recvString();
    sendBool(add(key, path));
}

void FileCacheProtocolServer::recvRelease() {
    const qvString::CString key = recvString();
    const bool removeFile = recvBool();
    sendBool(release(key, removeFile));
}

void FileCacheProtocolServer::recvSetAccessed() {
    const qvString::CString key = recvString();
    setAccessed(key);
    sendInt(0);
}

} // namespace qvObrixBase
