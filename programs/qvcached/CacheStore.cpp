#include "programs/qvcached/CacheStore.h"

#include <algorithm>
#include <ctime>
#include <utility>
#include <vector>

#include "Base/qvOS/SystemInfo.h"
#include "programs/qvcached/RemoteTier.h"

namespace fs = std::filesystem;

namespace qvcached {
namespace {

// Below this much free space the file being added may have been cut short by the full disk
// (its writer's last write failed); such a file is refused rather than served truncated.
constexpr std::uint64_t MinFreeBytes = 64 * 1024;

} // namespace

CacheStore::CacheStore(fs::path directory) : directory_(std::move(directory)) {
}

std::int64_t CacheStore::now() {
    return static_cast<std::int64_t>(std::time(nullptr));
}

bool CacheStore::isServerFile(const std::string& name) {
    static const char* const own[] = {
        "lockfile.lck",         "owner.lck",        "owner.port",
        "index.sqlite",         "index.sqlite-wal", "index.sqlite-shm",
        "index.sqlite-journal", "remote.conf",      "qvcached.log"};
    for (const char* n : own)
        if (name == n)
            return true;
    return name.size() >= 4 && name.compare(name.size() - 4, 4, ".tmp") == 0;
}

qvUtil::Error CacheStore::open() {
    if (auto err = index_.open(directory_ / CacheIndex::FileName); err.isError())
        return err;
    std::vector<IndexEntry> loaded;
    if (auto err = index_.load(loaded, counters_); err.isError())
        return err;
    for (IndexEntry& data : loaded) {
        Entry& entry = entries_[data.key];
        entry.data = std::move(data);
        entry.lru = lru_.insert(lru_.end(), &entry);
        keyByFile_[entry.data.file] = entry.data.key;
        totalBytes_ += entry.data.size;
        lastUse_ = std::max(lastUse_, entry.data.useOrder);
    }
    return {};
}

int CacheStore::holdCount(const std::string& key) const {
    auto it = entries_.find(key);
    return it == entries_.end() ? 0 : it->second.holds;
}

fs::path CacheStore::filePath(const Entry& entry) const {
    return directory_ / entry.data.file;
}

void CacheStore::touch(Entry& entry, std::int64_t time) {
    entry.data.accessTime = time;
    entry.data.useOrder = ++lastUse_;
    lru_.splice(lru_.end(), lru_, entry.lru);
    dirtyTimes_.insert(entry.data.key);
}

void CacheStore::hold(ConnectionId connection, Entry& entry) {
    ++entry.holds;
    ++holds_[connection][entry.data.key];
}

void CacheStore::setLimits(std::int64_t maxEntries, std::int64_t maxBytes) {
    maxEntries_ = maxEntries > 0 ? maxEntries : 0;
    maxBytes_ = maxBytes > 0 ? maxBytes : 0;
    evictToLimits();
}

bool CacheStore::acquire(ConnectionId connection, const std::string& key, std::string& path,
                         std::int64_t& accessTime, bool countMiss) {
    auto it = entries_.find(key);
    countersDirty_ = true;
    if (it == entries_.end()) {
        counters_.misses += countMiss;
        return false;
    }
    Entry& entry = it->second;
    // A file that went missing, or whose size changed since it was added (cut short, or
    // replaced), is no longer what the key names.
    std::error_code ec;
    const fs::file_status status = fs::symlink_status(filePath(entry), ec);
    const bool intact = !ec && fs::is_regular_file(status) &&
                        fs::file_size(filePath(entry), ec) == entry.data.size && !ec;
    if (!intact) {
        counters_.misses += countMiss;
        discard({&entry}, false);
        return false;
    }
    ++counters_.hits;
    touch(entry, now());
    hold(connection, entry);
    path = filePath(entry).string();
    accessTime = entry.data.accessTime;
    return true;
}

bool CacheStore::add(ConnectionId connection, const std::string& key, const std::string& path) {
    std::error_code ec;
    const fs::path given = fs::absolute(fs::path(path), ec);
    if (ec || !given.has_filename())
        return false;
    const std::string name = given.filename().string();
    if (name == "." || name == ".." || isServerFile(name))
        return false;
    // The file must sit directly in the cache directory, reached without links.
    if (fs::weakly_canonical(given.parent_path(), ec) != directory_ || ec)
        return false;
    const fs::path file = directory_ / name;
    const fs::file_status status = fs::symlink_status(file, ec);
    if (ec || !fs::is_regular_file(status))
        return false;
    const std::uintmax_t size = fs::file_size(file, ec);
    if (ec || size == 0)
        return false;

    if (auto it = entries_.find(key); it != entries_.end()) {
        if (it->second.data.file != name)
            return false;
        touch(it->second, now());
        hold(connection, it->second);
        return true;
    }
    if (keyByFile_.count(name))
        return false;
    std::uint64_t freeBytes = 0, totalBytes = 0;
    if (qvOS::queryDiskSpace(directory_.string(), freeBytes, totalBytes).isOk() &&
        freeBytes < MinFreeBytes)
        return false;
    return insert(key, name, static_cast<std::uint64_t>(size), &connection);
}

bool CacheStore::insert(const std::string& key, const std::string& name, std::uint64_t size,
                        const ConnectionId* connection) {
    IndexEntry data{key, name, size, now(), ++lastUse_};
    if (index_.insert(data).isError())
        return false;
    Entry& entry = entries_[key];
    entry.data = std::move(data);
    entry.lru = lru_.insert(lru_.end(), &entry);
    keyByFile_[name] = key;
    totalBytes_ += entry.data.size;
    if (connection)
        hold(*connection, entry);
    evictToLimits();
    return true;
}

bool CacheStore::adopt(const std::string& key, const std::string& name) {
    if (entries_.count(key) || keyByFile_.count(name) || isServerFile(name))
        return false;
    std::error_code ec;
    const fs::path file = directory_ / name;
    if (!fs::is_regular_file(fs::symlink_status(file, ec)) || ec)
        return false;
    const std::uintmax_t size = fs::file_size(file, ec);
    return !ec && size > 0 && insert(key, name, static_cast<std::uint64_t>(size), nullptr);
}

void CacheStore::countMiss() {
    ++counters_.misses;
    countersDirty_ = true;
}

void CacheStore::addRemoteCounters(const RemoteCounters& delta) {
    const std::pair<std::int64_t IndexCounters::*, std::int64_t> sums[] = {
        {&IndexCounters::remoteHits, delta.hits},
        {&IndexCounters::remoteMisses, delta.misses},
        {&IndexCounters::remoteBytesIn, delta.bytesIn},
        {&IndexCounters::remoteBytesOut, delta.bytesOut},
        {&IndexCounters::remoteErrors, delta.errors},
        {&IndexCounters::remoteDropped, delta.dropped}};
    for (const auto& [field, amount] : sums) {
        counters_.*field += amount;
        countersDirty_ = countersDirty_ || amount != 0;
    }
}

bool CacheStore::release(ConnectionId connection, const std::string& key, bool removeFile) {
    bool held = false;
    if (auto c = holds_.find(connection); c != holds_.end()) {
        if (auto h = c->second.find(key); h != c->second.end()) {
            held = true;
            if (--h->second == 0)
                c->second.erase(h);
        }
    }
    auto it = entries_.find(key);
    if (it == entries_.end())
        return held;
    Entry& entry = it->second;
    if (held)
        --entry.holds;
    if (removeFile)
        entry.removePending = true;
    if (entry.removePending && entry.holds == 0)
        discard({&entry}, false);
    else if (entry.holds == 0)
        evictToLimits(); // a file over the limits was kept only while it was held
    return true;
}

void CacheStore::setAccessed(const std::string& key) {
    if (auto it = entries_.find(key); it != entries_.end())
        touch(it->second, now());
}

void CacheStore::dropConnection(ConnectionId connection) {
    auto c = holds_.find(connection);
    if (c == holds_.end())
        return;
    std::vector<Entry*> gone;
    for (const auto& [key, count] : c->second) {
        auto it = entries_.find(key);
        if (it == entries_.end())
            continue;
        it->second.holds -= count;
        if (it->second.removePending && it->second.holds == 0)
            gone.push_back(&it->second);
    }
    holds_.erase(c);
    if (!gone.empty())
        discard(gone, false);
    evictToLimits();
}

void CacheStore::discard(const std::vector<Entry*>& gone, bool evicted) {
    std::vector<std::string> keys;
    for (Entry* entry : gone)
        keys.push_back(entry->data.key);
    if (evicted)
        counters_.evictions += static_cast<std::int64_t>(gone.size());
    // When the index cannot be changed (full disk), the entries stay, files included:
    // deleting a file whose entry survives would leave the index naming nothing.
    if (index_.erase(keys, counters_).isError()) {
        if (evicted)
            counters_.evictions -= static_cast<std::int64_t>(gone.size());
        return;
    }
    countersDirty_ = false;
    for (Entry* entry : gone) {
        std::error_code ec;
        fs::remove(filePath(*entry), ec);
        totalBytes_ -= entry->data.size;
        lru_.erase(entry->lru);
        keyByFile_.erase(entry->data.file);
        const std::string key = entry->data.key;
        dirtyTimes_.erase(key);
        entries_.erase(key);
    }
}

void CacheStore::evictToLimits() {
    auto over = [&](std::size_t count, std::uint64_t bytes) {
        return (maxEntries_ > 0 && static_cast<std::int64_t>(count) > maxEntries_) ||
               (maxBytes_ > 0 && bytes > static_cast<std::uint64_t>(maxBytes_));
    };
    std::size_t count = entries_.size();
    std::uint64_t bytes = totalBytes_;
    std::vector<Entry*> victims;
    for (auto it = lru_.begin(); it != lru_.end() && over(count, bytes); ++it) {
        if ((*it)->holds > 0)
            continue;
        victims.push_back(*it);
        --count;
        bytes -= (*it)->data.size;
    }
    if (!victims.empty())
        discard(victims, true);
}

void CacheStore::flush() {
    if (dirtyTimes_.empty() && !countersDirty_)
        return;
    std::vector<IndexEntry> used;
    for (const std::string& key : dirtyTimes_)
        if (auto it = entries_.find(key); it != entries_.end())
            used.push_back(it->second.data);
    if (index_.saveAccess(used, counters_).isOk()) {
        dirtyTimes_.clear();
        countersDirty_ = false;
    }
}

} // namespace qvcached
