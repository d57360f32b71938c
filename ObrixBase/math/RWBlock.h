// The storage block of the numeric classes: one heap array of elements shared by any number of
// vector and matrix views, with a 16-bit reference count. Views take and release references;
// the last release frees the array. The block knows neither its length nor its element type.
#ifndef OBRIX_MATH_RWBLOCK_H
#define OBRIX_MATH_RWBLOCK_H

#include <cstdint>

#include "ObrixBase/ObrixExport.h"

/// A reference-counted element array. Create with `new RWBlock(n, size)`; never delete
/// directly, drop references with release(). Not thread-safe; at most 65,535 references.
class OBRIX_API RWBlock {
public:
    /// A block of `count` elements of `elementSize` bytes, uninitialised, with one reference.
    /// For count 0 the array is null. When the array cannot be allocated, raises 0x3008 NOMEM
    /// ("RWBlock", forced terminate); if the handler returns, the array stays null.
    RWBlock(unsigned count, unsigned elementSize);
    /// Frees the array. Only release() destroys blocks.
    ~RWBlock();
    RWBlock(const RWBlock&) = delete;
    RWBlock& operator=(const RWBlock&) = delete;

    /// The first element, or null for a zero-length block (or a failed allocation).
    void* data() const noexcept { return data_; }
    /// The number of views holding this block.
    std::uint16_t references() const noexcept { return references_; }
    /// Takes one more reference.
    void addReference() noexcept { ++references_; }
    /// Drops one reference of `block` and destroys it when none is left. Null is ignored.
    static void release(RWBlock* block) noexcept;

private:
    std::uint16_t references_;
    void* data_;
};

#endif
