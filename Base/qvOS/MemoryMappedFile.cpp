#include "Base/qvOS/MemoryMappedFile.h"

#include <limits>
#include <utility>

#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

MemoryMappedFile::~MemoryMappedFile() {
    unmap();
}

MemoryMappedFile::MemoryMappedFile(MemoryMappedFile&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)),
      path_(std::move(other.path_)), file_(std::exchange(other.file_, nullptr)),
      mapping_(std::exchange(other.mapping_, nullptr)) {
    other.path_.clear();
}

MemoryMappedFile& MemoryMappedFile::operator=(MemoryMappedFile&& other) noexcept {
    if (this != &other) {
        unmap();
        data_ = std::exchange(other.data_, nullptr);
        size_ = std::exchange(other.size_, 0);
        path_ = std::move(other.path_);
        other.path_.clear();
        file_ = std::exchange(other.file_, nullptr);
        mapping_ = std::exchange(other.mapping_, nullptr);
    }
    return *this;
}

qvUtil::Error MemoryMappedFile::createFile(const qvString::CString& path, std::uint64_t size) {
    unmap();
    const char* what = "Cannot create mapped file";
    if (auto e = detail::checkPath(what, path); e.isError())
        return e;
    if (size == 0)
        return detail::pathError(OSError::InvalidArgument, what, path,
                                 "a mapping needs at least one byte");
    if (size > std::numeric_limits<std::size_t>::max())
        return detail::pathError(OSError::InvalidArgument, what, path,
                                 "the size exceeds this process's address space");
    return mapFile(path, size, true, true);
}

qvUtil::Error MemoryMappedFile::openFile(const qvString::CString& path, bool writable) {
    unmap();
    if (auto e = detail::checkPath("Cannot map file", path); e.isError())
        return e;
    return mapFile(path, 0, false, writable);
}

qvUtil::Error MemoryMappedFile::createAnonymous(std::uint64_t size) {
    unmap();
    if (size == 0 || size > std::numeric_limits<std::size_t>::max())
        return {OSError::InvalidArgument,
                "Cannot map %llu bytes of scratch memory: the size must be between 1 and the "
                "address space",
                static_cast<unsigned long long>(size)};
    return mapAnonymous(size);
}

qvUtil::Error MemoryMappedFile::checkFileSize(const char* what, const qvString::CString& path,
                                              std::uint64_t fileSize) {
    if (fileSize == 0)
        return detail::pathError(OSError::InvalidArgument, what, path,
                                 "the file is empty; there is nothing to map");
    if (fileSize > std::numeric_limits<std::size_t>::max())
        return detail::pathError(OSError::InvalidArgument, what, path,
                                 "the file is larger than this process's address space");
    return {};
}

qvString::CString MemoryMappedFile::scratchName(std::uint64_t size) {
    return qvString::CString::format("%llu bytes of scratch memory",
                                     static_cast<unsigned long long>(size));
}

} // namespace qvOS
