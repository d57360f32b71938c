// The cache's persistent index: one SQLite database (write-ahead log) in the cache directory
// holding every entry (key, file name, size, last use) and the hit, miss and eviction
// counters. Each change is one transaction, so an entry is either wholly there or absent
// after a crash, a kill -9 or a full disk.
#ifndef QVCACHED_CACHEINDEX_H
#define QVCACHED_CACHEINDEX_H

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Base/qvUtil/Error.h"

struct sqlite3;
struct sqlite3_stmt;

namespace qvcached {

/// One cached file. `file` is a bare name inside the cache directory.
struct IndexEntry {
    std::string key;
    std::string file;
    std::uint64_t size = 0;
    std::int64_t accessTime = 0; ///< seconds since 1970-01-01 UTC
    /// The order of last use, finer than accessTime's seconds: a larger value is more recent.
    std::int64_t useOrder = 0;
};

struct IndexCounters {
    std::int64_t hits = 0;
    std::int64_t misses = 0;
    std::int64_t evictions = 0;
    // The remote tier's work, summed over every run of the server (see RemoteCounters).
    std::int64_t remoteHits = 0;
    std::int64_t remoteMisses = 0;
    std::int64_t remoteBytesIn = 0;
    std::int64_t remoteBytesOut = 0;
    std::int64_t remoteErrors = 0;
    std::int64_t remoteDropped = 0;
};

/// The index database. Every call returns SQLite's error text (with the database's path) as
/// an error of code 1 and leaves the database as it was before the call.
class CacheIndex {
public:
    /// The index's file name in the cache directory.
    static constexpr const char* FileName = "index.sqlite";

    CacheIndex() = default;
    CacheIndex(const CacheIndex&) = delete;
    CacheIndex& operator=(const CacheIndex&) = delete;
    ~CacheIndex();

    /// Opens (creating, for the user alone) the index at `file`. Read-only opening fails when
    /// the file does not exist.
    qvUtil::Error open(const std::filesystem::path& file, bool readOnly = false);
    /// Every entry, least recently used first, and the counters.
    qvUtil::Error load(std::vector<IndexEntry>& entries, IndexCounters& counters);
    /// Adds one entry.
    qvUtil::Error insert(const IndexEntry& entry);
    /// Deletes the entries of `keys` and stores `counters`, together.
    qvUtil::Error erase(const std::vector<std::string>& keys, const IndexCounters& counters);
    /// Stores last-use times and orders, and the counters, together.
    qvUtil::Error saveAccess(const std::vector<IndexEntry>& used, const IndexCounters& counters);
    /// Deletes every entry; the counters stay.
    qvUtil::Error clear();

private:
    qvUtil::Error fail(const char* what) const;
    qvUtil::Error exec(const char* sql);
    qvUtil::Error saveCounters(const IndexCounters& counters);
    /// Runs `sql` once per item (`bind` binds item i's values) and saves the counters, all in
    /// one transaction that any failure rolls back; `what` names the step in error messages.
    qvUtil::Error batch(const char* sql, const char* what, std::size_t count,
                        const std::function<void(sqlite3_stmt*, std::size_t)>& bind,
                        const IndexCounters& counters);

    sqlite3* db_ = nullptr;
    std::string path_;
};

} // namespace qvcached

#endif
