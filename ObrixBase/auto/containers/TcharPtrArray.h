// TcharPtrArray: an array of C strings that owns its own copies of them. Every string handed
// to it is copied (with malloc) and the copy is freed when it is removed, replaced or the
// array dies, so callers may pass temporary buffers.
#ifndef OBRIX_AUTO_CONTAINERS_TCHARPTRARRAY_H
#define OBRIX_AUTO_CONTAINERS_TCHARPTRARRAY_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/auto/containers/TautoArrayBase.h"

/// Owns a heap copy of every string it holds; null is stored as null. Copies are deep.
/// Strings handed out stay valid until their slot is removed or replaced. Out of memory
/// throws std::bad_alloc and leaves the array as it was.
class OBRIX_API TcharPtrArray : public TautoArrayBase {
public:
    /// The empty array.
    TcharPtrArray() noexcept;
    /// A deep copy: every string copied again.
    TcharPtrArray(const TcharPtrArray& a);
    /// A deep copy; *this is unchanged when the copy cannot be made.
    TcharPtrArray& operator=(const TcharPtrArray& a);
    /// Takes over `a`'s strings; the source is left empty.
    TcharPtrArray(TcharPtrArray&&) noexcept = default;
    /// Frees this array's strings, then takes over `a`'s.
    TcharPtrArray& operator=(TcharPtrArray&&) noexcept = default;

    /// String i (owned by the array), or null when null was stored; unchecked.
    const char* operator[](int i) const noexcept { return static_cast<const char*>(item(i)); }
    /// Appends a copy of s (null stays null). Returns the copy.
    const char* append(const char* s);
    /// Inserts a copy of s in front of slot i (0 <= i <= length()). Returns the copy.
    const char* insert(int i, const char* s);
    /// Replaces string i by a copy of s; s may be string i itself. Returns the copy.
    const char* replace(int i, const char* s);
    /// The index of the first string equal to s by strcmp (null matches only null), or -1.
    /// O(total length).
    int find(const char* s) const noexcept;
    /// 1 when both hold equal strings in the same order.
    int operator==(const TcharPtrArray& a) const noexcept;
    /// The negation of ==.
    int operator!=(const TcharPtrArray& a) const noexcept { return !(*this == a); }
};

#endif
