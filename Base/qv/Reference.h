// Intrusive reference counting: objects derive from qv::ReferenceCount and are held through
// qv::Reference<T>; the last reference deletes the object. Counting is not atomic: objects
// are shared within the modelling thread, not across threads.
#ifndef BASE_QV_REFERENCE_H
#define BASE_QV_REFERENCE_H

#include <cstddef>
#include <utility>
#include <vector>

namespace qv {

/// Base of reference-counted objects. A new object has count 0; the first Reference takes it
/// to 1. Copies of an object start with their own count of 0.
class ReferenceCount {
public:
    ReferenceCount() = default;
    ReferenceCount(const ReferenceCount&) noexcept {}
    ReferenceCount& operator=(const ReferenceCount&) noexcept { return *this; }
    virtual ~ReferenceCount() = default;

    void addReference() const noexcept { ++count_; }
    /// Drops one reference and deletes the object when none is left.
    void removeReference() const noexcept {
        if (--count_ == 0)
            delete this;
    }
    long referenceCount() const noexcept { return count_; }

private:
    mutable long count_ = 0;
};

/// Holds one reference to a T derived from ReferenceCount; null by default.
template <class T>
class Reference {
public:
    Reference() noexcept = default;
    Reference(std::nullptr_t) noexcept {}
    Reference(T* p) noexcept : p_(p) { acquire(); }
    Reference(const Reference& other) noexcept : p_(other.p_) { acquire(); }
    Reference(Reference&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
    template <class U>
    Reference(const Reference<U>& other) noexcept : p_(other.get()) {
        acquire();
    }
    ~Reference() { release(); }

    Reference& operator=(Reference other) noexcept {
        std::swap(p_, other.p_);
        return *this;
    }

    T* get() const noexcept { return p_; }
    T* operator->() const noexcept { return p_; }
    T& operator*() const noexcept { return *p_; }
    explicit operator bool() const noexcept { return p_ != nullptr; }
    bool isNull() const noexcept { return p_ == nullptr; }
    void clear() noexcept { Reference().swap(*this); }
    void swap(Reference& other) noexcept { std::swap(p_, other.p_); }

    friend bool operator==(const Reference& a, const Reference& b) { return a.p_ == b.p_; }
    friend bool operator==(const Reference& a, std::nullptr_t) { return a.p_ == nullptr; }

private:
    void acquire() const noexcept {
        if (p_)
            p_->addReference();
    }
    void release() noexcept {
        if (p_)
            std::exchange(p_, nullptr)->removeReference();
    }
    T* p_ = nullptr;
};

/// The platform's vector type.
template <class T>
using vector = std::vector<T>;

} // namespace qv

#endif
