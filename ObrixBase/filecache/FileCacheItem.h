// One cached file as the application holds it: its key, where it lies and when it was last
// used. Items come from qvObrixBase::FileCache (find or add) and are held through
// qv::Reference; the cache server keeps the file for as long as any reference lives.
#ifndef OBRIX_FILECACHE_FILECACHEITEM_H
#define OBRIX_FILECACHE_FILECACHEITEM_H

#include <cstdint>

#include "Base/qv/Reference.h"
#include "Base/qvString/CString.h"
#include "ObrixBase/ObrixExport.h"

namespace qvObrixBase {

/// A cached file held by this process. The file at path() stays in the cache (the server
/// neither evicts nor deletes it) until the last reference to the item goes.
class OBRIX_API FileCacheItem : public qv::ReferenceCount {
public:
    FileCacheItem() = default;
    /// The copy starts with a reference count of its own (0); what a concrete item copies is
    /// its subclass's.
    FileCacheItem(const FileCacheItem&) = default;
    /// Keeps this item's reference count; the subclass assigns its own fields.
    FileCacheItem& operator=(const FileCacheItem&) = default;
    ~FileCacheItem() override;

    /// The cache key.
    virtual const qvString::CString& key() const = 0;
    /// The full path of the cached file.
    virtual const qvString::CString& path() const = 0;
    /// When the file was last used: seconds since 1970-01-01 UTC.
    virtual std::int64_t accessTime() const = 0;
};

} // namespace qvObrixBase

#endif
