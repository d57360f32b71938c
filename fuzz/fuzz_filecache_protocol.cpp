// The cache protocol's two request decoders on arbitrary bytes: FileCacheProtocolServer
// (blocking reads on a real loopback socket, as a server double uses it) and the cache
// server's incremental decoder (bytes as they arrive). Neither may crash or allocate more than
// a frame's limit, and both must read the same requests from the same bytes: unknown codes,
// truncated frames and 4 GB lengths included.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "Base/qvTCP/Socket.h"
#include "ObrixBase/filecache/FileCacheProtocolServer.h"
#include "programs/qvcached/WireFormat.h"

namespace {

// Writes each request down as one line, in a form both decoders can produce.
class Recorder : public qvObrixBase::FileCacheProtocolServer {
public:
    std::vector<std::string> seen;
    qvUtil::Error initialize(const qvString::CString& directory, int n,
                             std::int64_t limit) override {
        seen.push_back("0 " + directory + " " + std::to_string(n) + " " + std::to_string(limit));
        return qvUtil::Error(3, "%s", "100%% refused");
    }
    bool acquire(const qvString::CString& key, qvString::CString& path,
                 std::int64_t& time) override {
        seen.push_back("1 " + key);
        path = key;
        time = 7;
        return key.size() % 2 == 0;
    }
    bool add(const qvString::CString& key, const qvString::CString& path) override {
        seen.push_back("2 " + key + " " + path);
        return true;
    }
    bool release(const qvString::CString& key, bool removeFile) override {
        seen.push_back("3 " + key + (removeFile ? " 1" : " 0"));
        return false;
    }
    void setAccessed(const qvString::CString& key) override { seen.push_back("4 " + key); }
};

std::vector<std::string> decodeIncrementally(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> seen;
    const char* bytes = reinterpret_cast<const char*>(data);
    std::size_t at = 0;
    for (;;) {
        qvcached::Request r;
        std::size_t used = 0;
        const auto status = qvcached::decodeRequest(bytes + at, size - at, r, used);
        if (status == qvcached::DecodeStatus::Incomplete ||
            status == qvcached::DecodeStatus::FrameTooLong)
            return seen;
        at += used;
        if (status == qvcached::DecodeStatus::UnknownCode)
            continue;
        switch (r.code) {
        case qvObrixBase::FileCacheRequest::Initialize:
            seen.push_back("0 " + r.text + " " + std::to_string(r.number) + " " +
                           std::to_string(r.number64));
            break;
        case qvObrixBase::FileCacheRequest::Acquire:
            seen.push_back("1 " + r.text);
            break;
        case qvObrixBase::FileCacheRequest::Add:
            seen.push_back("2 " + r.text + " " + r.path);
            break;
        case qvObrixBase::FileCacheRequest::Release:
            seen.push_back("3 " + r.text + (r.flag ? " 1" : " 0"));
            break;
        case qvObrixBase::FileCacheRequest::SetAccessed:
            seen.push_back("4 " + r.text);
            break;
        }
    }
}

struct Link {
    qvTCP::Server listener{-1, 8};
    Link() {
        listener.setLoopbackOnly();
        if (listener.listen().isError())
            std::abort();
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Link link;
    qvTCP::ClientSocket writer(qvTCP::Address::loopback(link.listener.getPort()));
    std::unique_ptr<qvTCP::Socket> reader;
    if (writer.connect().isError() || link.listener.accept(5, reader).isError() || !reader)
        std::abort();
    // The whole input is in the reader's queue before decoding starts, so the only read that
    // waits is the one past its end, which the time limit ends.
    if (writer.write(data, size).isError())
        std::abort();
    reader->setReceiveTimeout(0.001);
    Recorder server;
    server.setSocket(*reader);
    try {
        for (;;)
            server.readRequest();
    } catch (const qvUtil::Error&) {
    }
    if (server.seen != decodeIncrementally(data, size))
        std::abort();
    return 0;
}
