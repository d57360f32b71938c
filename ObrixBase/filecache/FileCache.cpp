#include "ObrixBase/filecache/FileCache.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>
#include <memory>
#include <memory_resource>
#include <utility>
#include <vector>

#include "Base/qvOS/AppMain.h"
#include "Base/qvOS/Env.h"
#include "Base/qvOS/File.h"
#include "Base/qvOS/Filename.h"
#include "Base/qvOS/Process.h"
#include "Base/qvOS/Uuid.h"
#include "Base/qvRTB/Signal.h"
#include "Base/qvTCP/Socket.h"
#include "ObrixBase/filecache/FileCacheProtocolClient.h"

namespace qvObrixBase {

FileCacheItem::~FileCacheItem() = default;

namespace {

std::int64_t now64() {
    return static_cast<std::int64_t>(std::time(nullptr));
}

// A joined server gets this long to answer the Initialize request: a listener that accepts
// and then says nothing (a port reused by another program) must not hold the caller forever.
constexpr double JoinReplySeconds = 5.0;

class ItemImpl final : public FileCacheItem {
public:
    ItemImpl(const qvString::CString& key, const qvString::CString& path, std::int64_t time)
        : key_(key), path_(path), accessTime_(time) {}
    // The owning cache hears of the death here and sends the one Release of this item.
    ~ItemImpl() override { destroyed.send(this); }

    const qvString::CString& key() const override { return key_; }
    const qvString::CString& path() const override { return path_; }
    std::int64_t accessTime() const override { return accessTime_; }

    qvRTB::Signal<ItemImpl*> destroyed;
    qvString::CString key_;
    qvString::CString path_;
    std::int64_t accessTime_;
    bool removeOnRelease = false;
};

// Reads the port from the lock file and connects to it.
qvUtil::Error joinRunningServer(const qvString::CString& lockPath,
                                std::unique_ptr<qvTCP::Socket>& connection) {
    std::FILE* file = std::fopen(lockPath.c_str(), "r");
    if (!file)
        return qvUtil::Error(1, "Cannot open lockfile: %s", lockPath.c_str());
    char text[128] = {};
    const std::size_t n = std::fread(text, 1, sizeof text - 1, file);
    std::fclose(file);
    if (n == 0)
        return qvUtil::Error(1, "Cannot read lockfile: %s", lockPath.c_str());
    auto client = std::make_unique<qvTCP::ClientSocket>(qvTCP::Address::loopback(std::atoi(text)));
    qvUtil::Error err = client->connect();
    if (err.isError())
        return err;
    connection = std::move(client);
    return {};
}

// The application listens and the server connects back, so a server that could not start
// (or is started by hand) costs a bounded wait instead of a guess at its port.
qvUtil::Error startServer(std::unique_ptr<qvTCP::Socket>& connection) {
    qvTCP::Server server(-1, 1);
    server.setLoopbackOnly(true);
    qvUtil::Error err = server.listen();
    if (err.isError())
        return err;
    const qvString::CString portText = qvString::CString::format("%d", server.getPort());
    const qvString::CString program = qvOS::AppMain::getBinaryPath("qvcached");
    const std::vector<qvString::CString> args{"--port", portText};

    double interval = 5.0;
    qvString::CString manual;
    if (qvOS::GetEnv("VESKO_FILE_CACHE_MANUAL_START", manual)) {
        std::printf("Run: qvcached --port %s\n", portText.c_str());
        std::fflush(stdout);
        interval = 0.0;
    } else {
        err = qvOS::ProcessManager::startAsync(program, args, qvString::CString());
        if (err.isError())
            return err;
    }
    std::unique_ptr<qvTCP::Socket> accepted;
    err = server.accept(interval, accepted);
    if (err.isError())
        return err;
    if (!accepted)
        return qvUtil::Error(1, "could not connect to cache server");
    connection = std::move(accepted);
    return {};
}

} // namespace

class CacheImpl {
public:
    CacheImpl() : items(&itemNodes) {}
    ~CacheImpl() {
        socket.reset();
        items.clear();
    }

    void registerItem(ItemImpl* item) {
        items[item->key_] = item;
        item->destroyed.connect(client, [this](ItemImpl* dying) { onItemDestroyed(dying); });
    }

    // An earlier item of a key that was added again erases the key even though the table
    // names the newer item: the server counts one hold per item, and each item's own
    // Release settles its own hold.
    void onItemDestroyed(ItemImpl* item) {
        items.erase(item->key_);
        protocol.release(item->key_, item->removeOnRelease);
    }

    // Field order matters: the client goes last, so items that outlive the cache are cut
    // off only after the socket and the table are gone.
    qvRTB::SignalClient client;
    std::unique_ptr<qvTCP::Socket> socket;
    FileCacheProtocolClient protocol;
    qvString::CString directory;
    // The live items by key. Plain pointers: an item lives exactly as long as the
    // application's references, and its death takes it out of the table.
    std::pmr::unsynchronized_pool_resource itemNodes;
    std::pmr::map<qvString::CString, ItemImpl*> items;
};

FileCache::FileCache() : impl_(new CacheImpl), ownsImpl_(true) {
}

FileCache::FileCache(const FileCache& other) : impl_(other.impl_), ownsImpl_(false) {
}

FileCache::FileCache(FileCache&& other) noexcept
    : impl_(other.impl_), ownsImpl_(std::exchange(other.ownsImpl_, false)) {
}

FileCache& FileCache::operator=(const FileCache& other) {
    if (this != &other) {
        if (ownsImpl_)
            delete impl_;
        impl_ = other.impl_;
        ownsImpl_ = false;
    }
    return *this;
}

FileCache& FileCache::operator=(FileCache&& other) noexcept {
    if (this != &other) {
        if (ownsImpl_)
            delete impl_;
        impl_ = other.impl_;
        ownsImpl_ = std::exchange(other.ownsImpl_, false);
    }
    return *this;
}

FileCache::~FileCache() {
    if (ownsImpl_)
        delete impl_;
}

qvUtil::Error FileCache::initialize(const qvString::CString& directory, int maxEntries,
                                    std::int64_t maxBytes) {
    impl_->directory = directory;
    const qvString::CString lockPath =
        qvOS::Filename::join(directory, FileCacheProtocol::LockFileName);
    qvOS::FileInfo info;
    qvUtil::Error err = qvOS::File::query(lockPath, info);
    if (err.isError())
        return err;

    std::unique_ptr<qvTCP::Socket> connection;
    if (info.exists) {
        if (joinRunningServer(lockPath, connection).isOk()) {
            // A listener on a stale port may be anything: only a well-formed answer to
            // Initialize proves it is a cache server. A refusal in good form is that server's
            // answer and is returned as it came.
            connection->setReceiveTimeout(JoinReplySeconds);
            impl_->protocol.setSocket(*connection);
            if (impl_->protocol.tryInitialize(directory, maxEntries, maxBytes, err)) {
                connection->setReceiveTimeout(0);
                impl_->socket = std::move(connection);
                return err;
            }
            // The protocol must not keep pointing at the socket that goes here.
            impl_->protocol = FileCacheProtocolClient();
            connection.reset();
        }
        std::remove(lockPath.c_str());
    }
    err = startServer(connection);
    if (err.isError())
        return err;
    impl_->socket = std::move(connection);
    impl_->protocol.setSocket(*impl_->socket);
    return impl_->protocol.initialize(directory, maxEntries, maxBytes);
}

qv::Reference<FileCacheItem> FileCache::find(const qvString::CString& key) {
    auto live = impl_->items.find(key);
    if (live != impl_->items.end())
        return qv::Reference<FileCacheItem>(live->second);
    qvString::CString path;
    std::int64_t accessTime = 0;
    if (!impl_->protocol.acquire(key, path, accessTime))
        return nullptr;
    auto* item = new ItemImpl(key, path, accessTime);
    qv::Reference<FileCacheItem> result(item);
    impl_->registerItem(item);
    return result;
}

qv::Reference<FileCacheItem> FileCache::add(const qvString::CString& key,
                                            const qvString::CString& path) {
    if (!impl_->protocol.add(key, path))
        return nullptr;
    auto* item = new ItemImpl(key, path, now64());
    qv::Reference<FileCacheItem> result(item);
    impl_->registerItem(item);
    return result;
}

void FileCache::remove(qv::Reference<FileCacheItem> item) {
    if (auto* impl = dynamic_cast<ItemImpl*>(item.get()))
        impl->removeOnRelease = true;
}

void FileCache::setAccessed(qv::Reference<FileCacheItem> item) {
    auto* impl = dynamic_cast<ItemImpl*>(item.get());
    if (!impl)
        return;
    impl->accessTime_ = now64();
    impl_->protocol.setAccessed(impl->key_);
}

qvString::CString FileCache::generatePath() {
    return qvOS::Filename::join(impl_->directory, qvOS::Uuid().asString());
}

} // namespace qvObrixBase
