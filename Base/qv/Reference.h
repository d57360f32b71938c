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
    /// A copy is a new object: it starts with its own count of 0, whatever `other` holds.
    ReferenceCount(const ReferenceCount&) noexcept {}
    /// Keeps this object's count: counts belong to objects, not to their values.
    ReferenceCount& operator=(const ReferenceCount&) noexcept { return *this; }
    virtual ~ReferenceCount() = default;

    /// Takes one reference; Reference does this for its holders.
    void addReference() const noexcept { ++count_; }
    /// Drops one reference and deletes the object when none is left.
    void removeReference() const noexcept {
        if (--count_ == 0)
            delete this;
    }
    /// The number of references held now (0 before the first Reference takes one).
    long referenceCount() const noexcept { return count_; }

private:
    mutable long count_ = 0;
};

/// Holds one reference to a T derived from ReferenceCount; null by default.
template <class T>
class Reference {
public:
    /// Null.
    Reference() noexcept = default;
    /// Null.
    Reference(std::nullptr_t) noexcept {}
    /// Takes a reference to `p` (null allowed); `p` must come from `new`, since the last
    /// reference deletes it.
    Reference(T* p) noexcept : p_(p) { acquire(); }
    /// Shares `other`'s object, taking one more reference.
    Reference(const Reference& other) noexcept : p_(other.p_) { acquire(); }
    /// Takes over `other`'s reference; `other` is null afterwards.
    Reference(Reference&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
    /// Shares the object of a Reference to a class derived from T.
    template <class U>
    Reference(const Reference<U>& other) noexcept : p_(other.get()) {
        acquire();
    }
    ~Reference() { release(); }

    /// Drops the old reference after taking the new one, so self-assignment is safe.
    Reference& operator=(Reference other) noexcept {
        std::swap(p_, other.p_);
        return *this;
    }

    ///@{
    /// Access to the held object (null, or undefined to dereference, when this is null); `clear()`
    /// drops the reference and `swap()` exchanges two without touching counts.
    T* get() const noexcept { return p_; }
    T* operator->() const noexcept { return p_; }
    T& operator*() const noexcept { return *p_; }
    explicit operator bool() const noexcept { return p_ != nullptr; }
    bool isNull() const noexcept { return p_ == nullptr; }
    void clear() noexcept { Reference().swap(*this); }
    void swap(Reference& other) noexcept { std::swap(p_, other.p_); }
    ///@}

    /// True when both hold the same object (or both are null).
    friend bool operator==(const Reference& a, const Reference& b) { return a.p_ == b.p_; }
    /// True when `a` is null.
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
