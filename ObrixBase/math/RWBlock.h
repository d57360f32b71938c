// The storage block of the numeric classes: one heap array of elements shared by any number of
// vector and matrix views, with a 16-bit reference count. Views take and release references;
// the last release frees the array. The block knows neither its length nor its element type.
#ifndef OBRIX_MATH_RWBLOCK_H
#define OBRIX_MATH_RWBLOCK_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "ObrixBase/ObrixExport.h"

/// A reference-counted element array. Create with `new RWBlock(n, size)`; never delete
/// directly, drop references with release(). Not thread-safe; at most 65,534 references
/// count: see addReference() for what happens past them.
class OBRIX_API RWBlock {
public:
    /// A block of `count` elements of `elementSize` bytes, uninitialised, with one reference.
    /// For count 0 the array is null. When the array cannot be allocated, raises `MATH_NOMEM`
    /// (0x3008) ("RWBlock", forced terminate); if the handler returns, the array stays null.
    RWBlock(unsigned count, unsigned elementSize) : references_(1), data_(nullptr) {
        if (count == 0)
            return;
        data_ = std::malloc(static_cast<std::size_t>(count) * elementSize);
        if (data_ == nullptr)
            allocationFailed();
    }
    /// Frees the array. Only release() destroys blocks.
    ~RWBlock() { std::free(data_); }
    RWBlock(const RWBlock&) = delete;
    RWBlock& operator=(const RWBlock&) = delete;

    /// Header records come from a short per-thread list of released headers (at most a few
    /// hundred records, returned to the heap when the thread ends) and otherwise from the
    /// general heap, whose failure behaviour they keep. Element arrays never come from it.
    static void* operator new(std::size_t size);
    /// Puts the record on the calling thread's list, or back on the heap when the list is full.
    static void operator delete(void* record) noexcept;

    /// The first element, or null for a zero-length block (or a failed allocation).
    void* data() const noexcept { return data_; }
    /// The number of views holding this block.
    std::uint16_t references() const noexcept { return references_; }
    /// Takes one more reference. The count is 16 bits: taking the 65,535th raises
    /// `MATH_GENERIC` (0x3004) ("RWBlock", 1, "too many views of one block", forced
    /// terminate) instead of wrapping to 0, which would free the array under live views. If the
    /// handler returns, the block is pinned: its count stays at 65,535, later references and
    /// releases leave it alone and the array is never freed (a leak, not a double free). Views
    /// are taken in noexcept operations, so a throwing handler ends the process here.
    void addReference() noexcept {
        if (references_ >= kPinned - 1) {
            countOverflowed();
            return;
        }
        ++references_;
    }
    /// Drops one reference of `block` and destroys it when none is left. Null and pinned
    /// blocks are ignored.
    static void release(RWBlock* block) noexcept {
        // Inline: every temporary vector ends here, and most releases only decrement.
        if (block != nullptr && block->references_ != kPinned && --block->references_ == 0)
            destroy(block);
    }

private:
    /// Frees the array and the header of a block whose last reference is gone.
    static void destroy(RWBlock* block) noexcept;
    /// Raises NOMEM for an element array that could not be allocated.
    static void allocationFailed();
    /// Raises the overflow error of addReference() and pins the block.
    void countOverflowed() noexcept;

    /// A count that no view can take or drop: the block lives until the process ends.
    static constexpr std::uint16_t kPinned = 0xFFFF;

    std::uint16_t references_;
    void* data_;
};

#endif
