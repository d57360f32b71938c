// TobjArray: an array of pointers to objects of one type that owns the objects: it deletes
// each one when it is removed, replaced or the array dies. Use it for collections of
// heap-allocated objects (polymorphic ones included) that the array alone keeps alive.
#ifndef OBRIX_AUTO_CONTAINERS_TOBJARRAY_H
#define OBRIX_AUTO_CONTAINERS_TOBJARRAY_H

#include <memory>

#include "ObrixBase/auto/containers/TautoArrayBase.h"

/// Owns the T objects it points to and deletes them with `delete` (a T with derived objects
/// needs a virtual destructor). Objects come in as raw pointers from `new` or as
/// std::unique_ptr and go out, still alive, only through release(). Not copyable; movable.
/// Costs as Tarray's.
template <class T>
class TobjArray : public TautoArrayBase {
public:
    /// The empty array.
    TobjArray() noexcept : TautoArrayBase(&deleteObject) {}
    /// Takes over `other`'s objects; the source is left empty.
    TobjArray(TobjArray&&) noexcept = default;
    /// Deletes this array's objects, then takes over `other`'s.
    TobjArray& operator=(TobjArray&&) noexcept = default;

    /// Object i (still owned by the array); unchecked.
    T* operator[](int i) const noexcept { return static_cast<T*>(item(i)); }
    /// Takes ownership of `object` (from new, or null) and appends it. Returns it.
    T* append(T* object) {
        appendItem(object);
        return object;
    }
    /// Takes ownership and appends. Returns the object.
    T* append(std::unique_ptr<T> object) { return append(object.release()); }
    /// Takes ownership of `object` and inserts it in front of slot i (0 <= i <= length()).
    void insert(int i, T* object) { insertItem(i, object); }
    /// Deletes object i and stores `object`, now owned, in its place.
    void replace(int i, T* object) noexcept { replaceItem(i, object); }
    /// Removes slot i and hands its object to the caller.
    std::unique_ptr<T> release(int i) noexcept {
        return std::unique_ptr<T>(static_cast<T*>(releaseItem(i)));
    }
    /// The index of the slot holding `object` (the same pointer), or -1. O(n).
    int find(const T* object) const noexcept { return findItem(object); }

    /// Walks the objects as T*, in order.
    class const_iterator {
    public:
        /// The object at index `i` of `a` (end() is index length()).
        const_iterator(const TobjArray* a, int i) noexcept : a_(a), i_(i) {}
        /// The current object (never owned by the iterator).
        T* operator*() const noexcept { return (*a_)[i_]; }
        /// To the next object.
        const_iterator& operator++() noexcept {
            ++i_;
            return *this;
        }
        /// Same index.
        bool operator==(const const_iterator& o) const noexcept { return i_ == o.i_; }

    private:
        const TobjArray* a_;
        int i_;
    };
    ///@{
    /// The objects in index order.
    const_iterator begin() const noexcept { return const_iterator(this, 0); }
    const_iterator end() const noexcept { return const_iterator(this, length()); }
    ///@}

private:
    static void deleteObject(void* object) { delete static_cast<T*>(object); }
};

#endif
