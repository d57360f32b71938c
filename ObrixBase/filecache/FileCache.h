// qvObrixBase::FileCache: files shared between the application's processes through one cache
// directory. The first process to initialize a directory starts the cache server "qvcached"
// (it lies beside the application's programs); later ones join it through the lock file. The
// server decides which files stay and which are evicted; a process only says which ones it
// holds. Typical use:
//
//     qvObrixBase::FileCache cache;
//     if (cache.initialize(dir, 0, 0).isError()) ... // no cache: compute as usual
//     qv::Reference<qvObrixBase::FileCacheItem> item = cache.find(key);
//     if (!item) {
//         qvString::CString path = cache.generatePath();
//         ... write the file at path ...
//         item = cache.add(key, path);     // null: the server refused it; the file is yours
//     }
//     ... read item->path() while the reference lives ...
//
// A FileCache and its items belong to one thread; nothing here takes a lock.
#ifndef OBRIX_FILECACHE_FILECACHE_H
#define OBRIX_FILECACHE_FILECACHE_H

#include <cstdint>

#include "Base/qv/Reference.h"
#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"
#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/filecache/FileCacheItem.h"

namespace qvObrixBase {

class CacheImpl;

/// A process's view of one cache directory. The handle owns its implementation unless it is
/// a copy: a copy shares the original's connection and items without owning them, so it must
/// not outlive the original; moving hands the ownership over.
class OBRIX_API FileCache {
public:
    /// An unconnected cache: call initialize before anything else.
    FileCache();
    /// A handle sharing `other`'s connection and items without owning them: it must not outlive
    /// `other`.
    FileCache(const FileCache& other);
    /// Takes over `other`'s connection and ownership; `other` is left unconnected.
    FileCache(FileCache&& other) noexcept;
    /// Drops this handle's connection (when owned), then shares `other`'s as the copy constructor
    /// does.
    FileCache& operator=(const FileCache& other);
    /// Drops this handle's connection (when owned), then takes over `other`'s.
    FileCache& operator=(FileCache&& other) noexcept;
    /// When owning: closes the connection (the server then releases everything this process
    /// held) and cuts the items that outlive the cache, whose deaths then send nothing.
    ~FileCache();

    /// Connects to the cache server of `directory` (the port in its lock file "lockfile.lck"),
    /// or starts one when there is none or it cannot be reached: a stale, empty or unreadable
    /// lock file is deleted and a new server started. Then asks the server to serve
    /// `directory` with `maxEntries` and `maxBytes`, which the server reads as limits (0: no
    /// limit) and this class passes on unchanged. Returns the first error met: the lock file
    /// query's, the server start's ("could not connect to cache server", code 1, when the
    /// started server did not connect back within 5 s) or the server's answer. With the
    /// environment variable VESKO_FILE_CACHE_MANUAL_START set, nothing is started: the line
    /// "Run: qvcached --port N" goes to standard output and the call waits for that server
    /// without a time limit. Call once per FileCache.
    qvUtil::Error initialize(const qvString::CString& directory, int maxEntries,
                             std::int64_t maxBytes);

    /// The item for `key`: the one this process already holds (the server is not asked), or
    /// a new one when the server has the file; null when it has not, or on a broken connection.
    qv::Reference<FileCacheItem> find(const qvString::CString& key);
    /// Announces the file the caller wrote at `path` (normally from generatePath) under `key`.
    /// Returns the new item, or null when the server refused (path outside the cache
    /// directory, missing or empty file, the key already names another file) or the
    /// connection broke; the file then stays the caller's.
    qv::Reference<FileCacheItem> add(const qvString::CString& key, const qvString::CString& path);
    /// Marks `item` (null is ignored) so that the server deletes its file once the last
    /// reference in this process is gone and no other process holds it. Until then find still
    /// returns it. The reference passed in is dropped.
    void remove(qv::Reference<FileCacheItem> item);
    /// Records a use of `item` now (its accessTime and the server's). Null is ignored; the
    /// reference passed in is dropped.
    void setAccessed(qv::Reference<FileCacheItem> item);
    /// A new unique file name inside the cache directory (a UUID, no extension). Nothing is
    /// created on disk.
    qvString::CString generatePath();

private:
    CacheImpl* impl_;
    bool ownsImpl_;
};

} // namespace qvObrixBase

#endif
