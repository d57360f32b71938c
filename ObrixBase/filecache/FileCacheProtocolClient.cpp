#include "ObrixBase/filecache/FileCacheProtocolClient.h"

namespace qvObrixBase {

FileCacheProtocolClient::~FileCacheProtocolClient() = default;

qvUtil::Error FileCacheProtocolClient::initialize(const qvString::CString& directory,
                                                  int maxEntries, std::int64_t maxBytes) {
    qvUtil::Error answer;
    tryInitialize(directory, maxEntries, maxBytes, answer);
    return answer;
}

bool FileCacheProtocolClient::tryInitialize(const qvString::CString& directory, int maxEntries,
                                            std::int64_t maxBytes, qvUtil::Error& answer) {
    try {
        sendInt(static_cast<int>(FileCacheRequest::Initialize));
        sendString(directory);
        sendInt(maxEntries);
        sendInt64(maxBytes);
        answer = recvError();
        return true;
    } catch (const qvUtil::Error& error) {
        answer = error;
        return false;
    }
}

bool FileCacheProtocolClient::acquire(const qvString::CString& key, qvString::CString& path,
                                      std::int64_t& accessTime) {
    try {
        sendInt(static_cast<int>(FileCacheRequest::Acquire));
        sendString(key);
        path = recvString();
        accessTime = recvInt64();
        return recvBool();
    } catch (...) {
        return false;
    }
}

bool FileCacheProtocolClient::add(const qvString::CString& key, const qvString::CString& path) {
    try {
        sendInt(static_cast<int>(FileCacheRequest::Add));
        sendString(key);
        sendString(path);
        return recvBool();
    } catch (...) {
        return false;
    }
}

bool FileCacheProtocolClient::release(const qvString::CString& key, bool removeFile) {
    try {
        sendInt(static_cast<int>(FileCacheRequest::Release));
        sendString(key);
        sendBool(removeFile);
        return recvBool();
    } catch (...) {
        return false;
    }
}

void FileCacheProtocolClient::setAccessed(const qvString::CString& key) {
    try {
        sendInt(static_cast<int>(FileCacheRequest::SetAccessed));
        sendString(key);
        (void)recvInt();
    } catch (...) {
    }
}

} // namespace qvObrixBase
