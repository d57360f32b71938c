// The cache's bookkeeping, apart from any socket: which files the cache has, which client
// connections hold which of them, and which go when the cache is over its limits. The server
// calls it from its one event-loop thread; tests call it directly.
//
// Rules it keeps:
//   - an entry is served only while its file is there with the size it was added with;
//   - a held file is never evicted, and a removed one is deleted only when its last hold ends;
//   - a file is deleted once: its entry leaves the index first, then the file goes;
//   - nothing outside the cache directory is ever served or deleted.
#ifndef QVCACHED_CACHESTORE_H
#define QVCACHED_CACHESTORE_H

#include <cstdint>
#include <filesystem>
#include <list>
#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "Base/qvUtil/Error.h"
#include "programs/qvcached/CacheIndex.h"

namespace qvcached {

struct RemoteCounters;

/// Tells the client connections apart; the store never reuses one.
using ConnectionId = std::uint64_t;

class CacheStore {
public:
    /// `directory` must be absolute and exist.
    explicit CacheStore(std::filesystem::path directory);

    /// Opens the index and loads every entry.
    qvUtil::Error open();
    /// The cache's limits: at most `maxEntries` entries and `maxBytes` bytes (0 or less: no
    /// limit). Evicts at once down to them.
    void setLimits(std::int64_t maxEntries, std::int64_t maxBytes);

    /// The request handlers; see FileCacheProtocol for what each means to the client.
    /// `countMiss` false leaves a miss uncounted, for a caller that asks further first and
    /// counts the outcome itself (countMiss, or a later acquire's hit).
    bool acquire(ConnectionId connection, const std::string& key, std::string& path,
                 std::int64_t& accessTime, bool countMiss = true);
    bool add(ConnectionId connection, const std::string& key, const std::string& path);
    bool release(ConnectionId connection, const std::string& key, bool removeFile);
    void setAccessed(const std::string& key);
    /// Counts one miss (see acquire's countMiss).
    void countMiss();
    /// Indexes `name`, a file already complete in the cache directory, under `key` without
    /// holding it. False, leaving the file alone, when the key or the file is already indexed,
    /// the file is empty or not a regular file, or the index cannot be written.
    bool adopt(const std::string& key, const std::string& name);
    /// True when `key` has an entry (whether or not its file is still intact).
    bool contains(const std::string& key) const { return entries_.count(key) != 0; }
    /// Adds the remote tier's latest counts to the counters saved at the next flush.
    void addRemoteCounters(const RemoteCounters& delta);
    /// Ends every hold of a connection that went away, as if it had released each.
    void dropConnection(ConnectionId connection);

    /// Writes the last-use times and counters that changed since the last flush. Entries
    /// themselves are written when they change; this batch is what a crash may lose.
    void flush();

    const std::filesystem::path& directory() const noexcept { return directory_; }
    std::size_t entryCount() const noexcept { return entries_.size(); }
    std::uint64_t totalBytes() const noexcept { return totalBytes_; }
    const IndexCounters& counters() const noexcept { return counters_; }
    /// Holds on `key` over all connections.
    int holdCount(const std::string& key) const;

    /// True for the names the server keeps for itself in the directory (index, lock files,
    /// temporaries): they are never taken as cached files.
    static bool isServerFile(const std::string& name);

private:
    struct Entry {
        IndexEntry data;
        int holds = 0;
        bool removePending = false;
        std::list<Entry*>::iterator lru;
    };

    static std::int64_t now();
    void touch(Entry& entry, std::int64_t time);
    void hold(ConnectionId connection, Entry& entry);
    /// Indexes a checked file of `size` bytes, held by `connection` unless it is null.
    bool insert(const std::string& key, const std::string& name, std::uint64_t size,
                const ConnectionId* connection);
    /// Takes entries out of the index and memory, then deletes their files.
    void discard(const std::vector<Entry*>& gone, bool evicted);
    void evictToLimits();
    std::filesystem::path filePath(const Entry& entry) const;

    std::filesystem::path directory_;
    CacheIndex index_;
    std::unordered_map<std::string, Entry> entries_;
    std::unordered_map<std::string, std::string> keyByFile_;
    // Least recently used first.
    std::list<Entry*> lru_;
    std::uint64_t totalBytes_ = 0;
    std::int64_t lastUse_ = 0;
    std::int64_t maxEntries_ = 0;
    std::int64_t maxBytes_ = 0;
    IndexCounters counters_;
    bool countersDirty_ = false;
    std::unordered_set<std::string> dirtyTimes_;
    std::map<ConnectionId, std::unordered_map<std::string, int>> holds_;
};

} // namespace qvcached

#endif
