#include "Base/qvOS/MemoryMappedFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

qvUtil::Error MemoryMappedFile::mapFile(const qvString::CString& path, std::uint64_t size,
                                        bool create, bool writable) {
    const char* what = create ? "Cannot create mapped file" : "Cannot map file";
    int flags = O_CLOEXEC | (writable ? O_RDWR : O_RDONLY) | (create ? O_CREAT | O_TRUNC : 0);
    int fd = ::open(path.c_str(), flags, 0666);
    if (fd < 0)
        return detail::lastSystemError(what, path);
    // A failed creation leaves no file behind; a failed open leaves the file as it was.
    auto fail = [&](qvUtil::Error e) {
        ::close(fd);
        if (create)
            ::unlink(path.c_str());
        return e;
    };
    if (create) {
        // ftruncate extends with zeros (sparse where the file system can).
        if (::ftruncate(fd, static_cast<off_t>(size)) != 0)
            return fail(detail::lastSystemError(what, path));
    } else {
        struct stat st;
        if (::fstat(fd, &st) != 0)
            return fail(detail::lastSystemError(what, path));
        if (!S_ISREG(st.st_mode))
            return fail(
                detail::pathError(OSError::InvalidArgument, what, path, "not a regular file"));
        size = static_cast<std::uint64_t>(st.st_size);
        if (auto e = checkFileSize(what, path, size); e.isError())
            return fail(e);
    }
    int prot = PROT_READ | (writable ? PROT_WRITE : 0);
    void* p = ::mmap(nullptr, static_cast<std::size_t>(size), prot, MAP_SHARED, fd, 0);
    if (p == MAP_FAILED)
        return fail(detail::lastSystemError(what, path));
    // The mapping keeps the file open by itself; the descriptor is no longer needed.
    ::close(fd);
    data_ = p;
    size_ = size;
    path_ = path;
    return {};
}

qvUtil::Error MemoryMappedFile::mapAnonymous(std::uint64_t size) {
    void* p = ::mmap(nullptr, static_cast<std::size_t>(size), PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED)
        return detail::lastSystemError("Cannot map", scratchName(size));
    data_ = p;
    size_ = size;
    return {};
}

qvUtil::Error MemoryMappedFile::flush() {
    if (!data_ || path_.empty())
        return {};
    if (::msync(data_, static_cast<std::size_t>(size_), MS_SYNC) != 0)
        return detail::lastSystemError("Cannot flush mapped file", path_);
    return {};
}

void MemoryMappedFile::unmap() noexcept {
    if (data_)
        ::munmap(data_, static_cast<std::size_t>(size_));
    data_ = nullptr;
    size_ = 0;
    path_.clear();
}

} // namespace qvOS
