// Field access for the intrusive containers. Callers declare their own node records (a list
// node starts with two pointers, a tree node with two pointers, a 16-bit balance and an 8-bit
// mark), so the library never knows their type: every link is read and written as raw bytes
// at a fixed offset, which is defined behaviour whatever the caller's declared field types
// and compiles to a plain load or store.
#ifndef OBRIX_UTIL_VK_FIELDS_INTERNAL_H
#define OBRIX_UTIL_VK_FIELDS_INTERNAL_H

#if !defined(OBRIX_BUILDING)
#error "vk_fields_internal.h is private to libObrixBase; include the public headers instead"
#endif

#include <cstddef>
#include <cstring>

namespace obrix::detail {

template <class T>
inline T loadField(const void* record, std::size_t offset) {
    T value;
    std::memcpy(&value, static_cast<const unsigned char*>(record) + offset, sizeof(T));
    return value;
}

template <class T>
inline void storeField(void* record, std::size_t offset, T value) {
    std::memcpy(static_cast<unsigned char*>(record) + offset, &value, sizeof(T));
}

/// The pointer stored at `location` (a caller's head or root variable, or a link field).
inline void* loadPointer(const void* location) {
    return loadField<void*>(location, 0);
}

inline void storePointer(void* location, void* value) {
    storeField<void*>(location, 0, value);
}

} // namespace obrix::detail

#endif
