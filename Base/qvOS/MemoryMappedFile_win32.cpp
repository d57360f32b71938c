#include "Base/qvOS/MemoryMappedFile.h"

#include <windows.h>

#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

qvUtil::Error MemoryMappedFile::mapFile(const qvString::CString& path, std::uint64_t size,
                                        bool create, bool writable) {
    const char* what = create ? "Cannot create mapped file" : "Cannot map file";
    // Other processes may open the file for reading and writing while it is mapped: sharing
    // the bytes with them is the point of a file mapping.
    HANDLE file =
        CreateFileW(path.toWide().c_str(), GENERIC_READ | (writable ? GENERIC_WRITE : 0),
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    create ? CREATE_ALWAYS : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return detail::lastSystemError(what, path);
    HANDLE mapping = nullptr;
    // A failed creation leaves no file behind; a failed open leaves the file as it was.
    auto fail = [&](qvUtil::Error e) {
        if (mapping)
            CloseHandle(mapping);
        CloseHandle(file);
        if (create)
            DeleteFileW(path.toWide().c_str());
        return e;
    };
    if (!create) {
        LARGE_INTEGER fileSize;
        if (!GetFileSizeEx(file, &fileSize))
            return fail(detail::lastSystemError(what, path));
        size = static_cast<std::uint64_t>(fileSize.QuadPart);
        if (auto e = checkFileSize(what, path, size); e.isError())
            return fail(e);
    }
    // With a size larger than the file, the mapping object extends the file with zeros.
    mapping = CreateFileMappingA(file, nullptr, writable ? PAGE_READWRITE : PAGE_READONLY,
                                 static_cast<DWORD>(size >> 32), static_cast<DWORD>(size), nullptr);
    if (!mapping)
        return fail(detail::lastSystemError(what, path));
    void* view = MapViewOfFile(mapping, writable ? FILE_MAP_WRITE : FILE_MAP_READ, 0, 0,
                               static_cast<SIZE_T>(size));
    if (!view)
        return fail(detail::lastSystemError(what, path));
    data_ = view;
    size_ = size;
    path_ = path;
    file_ = file;
    mapping_ = mapping;
    return {};
}

qvUtil::Error MemoryMappedFile::mapAnonymous(std::uint64_t size) {
    // Backed by the page file; unnamed, so no other process can open it.
    HANDLE mapping =
        CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE,
                           static_cast<DWORD>(size >> 32), static_cast<DWORD>(size), nullptr);
    if (!mapping)
        return detail::lastSystemError("Cannot map", scratchName(size));
    void* view = MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, static_cast<SIZE_T>(size));
    if (!view) {
        qvUtil::Error e = detail::lastSystemError("Cannot map", scratchName(size));
        CloseHandle(mapping);
        return e;
    }
    data_ = view;
    size_ = size;
    mapping_ = mapping;
    return {};
}

qvUtil::Error MemoryMappedFile::flush() {
    if (!data_ || !file_)
        return {};
    // FlushViewOfFile only starts the writes; FlushFileBuffers waits for them to reach the disk.
    if (!FlushViewOfFile(data_, 0) || !FlushFileBuffers(static_cast<HANDLE>(file_)))
        return detail::lastSystemError("Cannot flush mapped file", path_);
    return {};
}

void MemoryMappedFile::unmap() noexcept {
    if (data_)
        UnmapViewOfFile(data_);
    if (mapping_)
        CloseHandle(static_cast<HANDLE>(mapping_));
    if (file_)
        CloseHandle(static_cast<HANDLE>(file_));
    data_ = nullptr;
    mapping_ = nullptr;
    file_ = nullptr;
    size_ = 0;
    path_.clear();
}

} // namespace qvOS
