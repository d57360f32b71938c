#include "ObrixBase/math/RWBlock.h"

#include <new>

#include "ObrixBase/math/MathError.h"

#if defined(__SANITIZE_ADDRESS__)
#define OBRIX_POISON_RECORDS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define OBRIX_POISON_RECORDS 1
#endif
#endif
#if defined(OBRIX_POISON_RECORDS)
#include <sanitizer/asan_interface.h>
#endif

namespace {

// Released header records kept for reuse. Every vector result and temporary allocates a header
// next to its element array; for short vectors the two heap round trips cost more than the
// arithmetic, and reusing the header halves them. The list is per thread, so that vectors
// living on different threads never share it, and plain data, so that it needs no guard on
// the allocation path. `capacity` is 0 until the thread's first release arms the list (and
// registers the drain below), and 0 again once the drain has run, after which records go
// straight back to the heap.
struct FreeHeaders {
    void* head;
    unsigned count;
    unsigned capacity;
    bool drained;
};

constexpr unsigned maxFreeHeaders = 256;

[[gnu::tls_model("initial-exec")]] thread_local FreeHeaders freeHeaders = {nullptr, 0, 0, false};

// A free record holds the link to the next one in its first bytes.
void*& nextRecord(void* record) {
    return *static_cast<void**>(record);
}

// Under AddressSanitizer a listed record is poisoned, so that a stale header pointer is still
// reported as a use after free.
void poisonRecord(void* record) {
#if defined(OBRIX_POISON_RECORDS)
    ASAN_POISON_MEMORY_REGION(record, sizeof(RWBlock));
#else
    (void)record;
#endif
}

void unpoisonRecord(void* record) {
#if defined(OBRIX_POISON_RECORDS)
    ASAN_UNPOISON_MEMORY_REGION(record, sizeof(RWBlock));
#else
    (void)record;
#endif
}

// Returns the thread's records to the heap when the thread ends (for the main thread, at
// exit), so that none is left for LeakSanitizer or for a process that starts many threads.
struct DrainFreeHeaders {
    ~DrainFreeHeaders() {
        FreeHeaders& list = freeHeaders;
        while (list.head != nullptr) {
            void* record = list.head;
            unpoisonRecord(record);
            list.head = nextRecord(record);
            ::operator delete(record);
        }
        list.count = 0;
        list.capacity = 0;
        list.drained = true;
    }
};

void armFreeHeaders() {
    // Naming the object registers its destructor for this thread.
    thread_local DrainFreeHeaders drain;
    (void)drain;
    freeHeaders.capacity = maxFreeHeaders;
}

// Takes a record off the thread's list, or null when it is empty.
void* popRecord() {
    FreeHeaders& list = freeHeaders;
    void* record = list.head;
    if (record != nullptr) {
        unpoisonRecord(record);
        list.head = nextRecord(record);
        --list.count;
    }
    return record;
}

// Keeps a released record on the thread's list while there is room, else frees it.
void pushRecord(void* record) {
    FreeHeaders& list = freeHeaders;
    if (list.capacity == 0 && !list.drained)
        armFreeHeaders();
    if (list.count < list.capacity) {
        nextRecord(record) = list.head;
        poisonRecord(record);
        list.head = record;
        ++list.count;
        return;
    }
    ::operator delete(record);
}

} // namespace

void* RWBlock::operator new(std::size_t size) {
    if (void* record = popRecord())
        return record;
    return ::operator new(size);
}

void RWBlock::operator delete(void* record) noexcept {
    if (record != nullptr)
        pushRecord(record);
}

void RWBlock::destroy(RWBlock* block) noexcept {
    // What `delete block` does, without the second trip through the exported operator.
    block->~RWBlock();
    pushRecord(block);
}

void RWBlock::countOverflowed() noexcept {
    mathErrorRaise(MathError{MATH_GENERIC, MATH_TERMINATE, MATH_TAG_ALLOCATOR}, "RWBlock", 1,
                   "too many views of one block");
    references_ = kPinned;
}

void RWBlock::allocationFailed() {
    mathErrorRaise(MathError{MATH_NOMEM, MATH_TERMINATE, MATH_TAG_ALLOCATOR}, "RWBlock");
}
