#include "ObrixBase/math/RWBlock.h"

#include <cstddef>
#include <cstdlib>

#include "ObrixBase/math/MathError.h"

RWBlock::RWBlock(unsigned count, unsigned elementSize) : references_(1), data_(nullptr) {
    if (count == 0)
        return;
    data_ = std::malloc(static_cast<std::size_t>(count) * elementSize);
    if (data_ == nullptr)
        mathErrorRaise(MathError{MATH_NOMEM, MATH_TERMINATE, MATH_TAG_ALLOCATOR}, "RWBlock");
}

RWBlock::~RWBlock() {
    std::free(data_);
}

void RWBlock::release(RWBlock* block) noexcept {
    if (block != nullptr && --block->references_ == 0)
        delete block;
}
