// A file (or anonymous scratch memory) mapped into this process's address space. Writes to a
// file mapping are shared: another process that maps the same file sees them, and they reach
// the file by flush() or, at the latest, when the last mapping goes away.
#ifndef BASE_QVOS_MEMORYMAPPEDFILE_H
#define BASE_QVOS_MEMORYMAPPEDFILE_H

#include <cstdint>

#include "Base/BaseExport.h"
#include "Base/qvOS/OSError.h"
#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"

namespace qvOS {

/// One mapping; movable, not copyable. Not thread-safe; the mapped bytes are the caller's to
/// guard. Mapping a new file or memory unmaps the previous one first.
class BASE_API MemoryMappedFile {
public:
    MemoryMappedFile() = default;
    /// Unmaps (without flushing explicitly; the system still writes dirty pages of a file).
    ~MemoryMappedFile();
    /// Takes over `other`'s mapping; `other` is left unmapped.
    MemoryMappedFile(MemoryMappedFile&& other) noexcept;
    /// Unmaps this mapping first, then takes over `other`'s.
    MemoryMappedFile& operator=(MemoryMappedFile&& other) noexcept;
    MemoryMappedFile(const MemoryMappedFile&) = delete;
    MemoryMappedFile& operator=(const MemoryMappedFile&) = delete;

    /// Creates (or truncates) path at size bytes, zero-filled, mapped read-write and shared.
    /// size 0 is InvalidArgument (nothing can be mapped); on failure nothing stays mapped.
    qvUtil::Error createFile(const qvString::CString& path, std::uint64_t size);
    /// Maps an existing file whole, read-write and shared when writable, else read-only (then
    /// writing through data() is undefined). An empty file is InvalidArgument.
    qvUtil::Error openFile(const qvString::CString& path, bool writable);
    /// Anonymous private mapping of size bytes (scratch memory), zero-filled; path() is "".
    qvUtil::Error createAnonymous(std::uint64_t size);
    /// Writes the dirty pages of a file mapping to the file and waits for it; nothing to do
    /// (success) for an anonymous or absent mapping.
    qvUtil::Error flush();
    /// Releases the mapping (and the file); afterwards data() is null and size() 0.
    void unmap() noexcept;

    ///@{
    /// The first mapped byte (null when nothing is mapped), the mapped length in bytes and whether
    /// a mapping is held.
    void* data() const noexcept { return data_; }
    std::uint64_t size() const noexcept { return size_; }
    bool isMapped() const noexcept { return data_ != nullptr; }
    ///@}
    /// The mapped file's path, "" for anonymous memory or no mapping.
    const qvString::CString& path() const noexcept { return path_; }

private:
    // The systems' parts: the callers have checked the path and the size.
    qvUtil::Error mapFile(const qvString::CString& path, std::uint64_t size, bool create,
                          bool writable);
    qvUtil::Error mapAnonymous(std::uint64_t size);
    // The error for an existing file of fileSize bytes that cannot be mapped whole (empty, or
    // beyond the address space); none when it can.
    static qvUtil::Error checkFileSize(const char* what, const qvString::CString& path,
                                       std::uint64_t fileSize);
    // How messages name a scratch mapping of size bytes.
    static qvString::CString scratchName(std::uint64_t size);

    void* data_ = nullptr;
    std::uint64_t size_ = 0;
    qvString::CString path_;
    void* file_ = nullptr;    // Windows: the file's HANDLE (POSIX closes its descriptor at once)
    void* mapping_ = nullptr; // Windows: the file-mapping HANDLE
};

} // namespace qvOS

#endif
