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

} // namespace qvOS
