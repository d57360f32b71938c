// Tarray: a growable array that holds its elements by value in one contiguous block, for
// collections that are built once and then read by index. Elements of trivially copyable types
// (numbers, points, pointers) move with realloc, so growing costs no per-element work.
// Indices and lengths are int, like the C containers'.
#ifndef OBRIX_AUTO_CONTAINERS_TARRAY_H
#define OBRIX_AUTO_CONTAINERS_TARRAY_H

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

#include "Base/rpt/rpt.h"

/// An array of T that owns its elements (copies of what was appended) and its block. Copies
/// are deep; a moved-from array is empty. Element pointers, references and iterators stay
/// valid until the array grows or an element before them is inserted or removed. Out of memory
/// throws std::bad_alloc and leaves the array as it was. Only at() checks its index.
template <class T>
class Tarray {
public:
    /// The element type.
    using value_type = T;
    /// Iterators are plain pointers into the block: any growth moves them.
    using iterator = T*;
    /// Read-only iterator, a plain pointer like iterator.
    using const_iterator = const T*;

    /// The empty array; allocates nothing.
    Tarray() noexcept = default;
    /// n copies of v.
    explicit Tarray(int n, const T& v = T()) {
        reserve(n);
        for (int i = 0; i < n; ++i)
            new (data_ + i) T(v);
        length_ = n < 0 ? 0 : n;
    }
    /// The listed elements, in order.
    Tarray(std::initializer_list<T> items) {
        reserve(static_cast<int>(items.size()));
        for (const T& v : items)
            new (data_ + length_++) T(v);
    }
    /// A deep copy with a block just large enough.
    Tarray(const Tarray& a) {
        reserve(a.length_);
        copyConstruct(a.data_, a.length_, data_);
        length_ = a.length_;
    }
    /// Takes a's block; a is left empty.
    Tarray(Tarray&& a) noexcept
        : data_(std::exchange(a.data_, nullptr)), length_(std::exchange(a.length_, 0)),
          capacity_(std::exchange(a.capacity_, 0)) {}
    /// A deep copy; *this is unchanged when the copy cannot be made.
    Tarray& operator=(const Tarray& a) {
        if (this != &a) {
            Tarray copy(a);
            swap(copy);
        }
        return *this;
    }
    /// Takes a's block and frees this one's.
    Tarray& operator=(Tarray&& a) noexcept {
        Tarray taken(std::move(a));
        swap(taken);
        return *this;
    }
    /// Destroys the elements and frees the block.
    ~Tarray() {
        destroy(data_, length_);
        std::free(data_);
    }

    /// Exchanges the contents of two arrays. O(1).
    void swap(Tarray& a) noexcept {
        std::swap(data_, a.data_);
        std::swap(length_, a.length_);
        std::swap(capacity_, a.capacity_);
    }

    /// The number of elements.
    int length() const noexcept { return length_; }
    /// The number of elements the block holds before it must grow.
    int capacity() const noexcept { return capacity_; }
    /// 1 when there are no elements.
    int isEmpty() const noexcept { return length_ == 0; }

    /// Element i, unchecked.
    T& operator[](int i) noexcept { return data_[i]; }
    /// Element i of a const array, unchecked.
    const T& operator[](int i) const noexcept { return data_[i]; }
    /// Element i; an index outside 0..length()-1 is a programming error: it is reported
    /// through rptError ("Tarray index 5 out of range 0..4") and the process aborts.
    T& at(int i) noexcept {
        check(i);
        return data_[i];
    }
    /// Element i of a const array, checked as above.
    const T& at(int i) const noexcept {
        check(i);
        return data_[i];
    }
    /// The first element; unchecked, so the array must not be empty.
    T& first() noexcept { return data_[0]; }
    /// The first element of a const array; it must not be empty.
    const T& first() const noexcept { return data_[0]; }
    /// The last element; unchecked, so the array must not be empty.
    T& last() noexcept { return data_[length_ - 1]; }
    /// The last element of a const array; it must not be empty.
    const T& last() const noexcept { return data_[length_ - 1]; }

    /// The block (null while nothing was ever reserved).
    T* data() noexcept { return data_; }
    /// The block of a const array.
    const T* data() const noexcept { return data_; }
    /// The first element's address (data()).
    T* begin() noexcept { return data_; }
    /// Past the last element.
    T* end() noexcept { return data_ + length_; }
    /// The first element's address of a const array.
    const T* begin() const noexcept { return data_; }
    /// Past the last element of a const array.
    const T* end() const noexcept { return data_ + length_; }

    /// Appends a copy of v, which may be an element of this array. Amortised O(1): the block
    /// doubles when full. Returns the new element.
    T& append(const T& v) {
        if (length_ == capacity_) {
            T copy(v); // v may live in the block that grow() is about to move
            grow(length_ + 1);
            return *new (data_ + length_++) T(std::move(copy));
        }
        return *new (data_ + length_++) T(v);
    }
    /// Appends v by moving it. Amortised O(1). Returns the new element.
    T& append(T&& v) {
        if (length_ == capacity_) {
            T moved(std::move(v));
            grow(length_ + 1);
            return *new (data_ + length_++) T(std::move(moved));
        }
        return *new (data_ + length_++) T(std::move(v));
    }
    /// Inserts a copy of v in front of element i (0 <= i <= length(); i = length() appends).
    /// O(length() - i). Returns the new element.
    T& insert(int i, const T& v) {
        T copy(v);
        append(std::move(copy));
        // Rotate the new last element down into place.
        for (int k = length_ - 1; k > i; --k)
            std::swap(data_[k], data_[k - 1]);
        return data_[i];
    }
    /// Removes element i, keeping the order of the rest. O(length() - i).
    void remove(int i) noexcept {
        for (int k = i; k + 1 < length_; ++k)
            data_[k] = std::move(data_[k + 1]);
        removeLast();
    }
    /// Removes element i by moving the last element into its place: O(1), order not kept.
    void removeFast(int i) noexcept {
        if (i != length_ - 1)
            data_[i] = std::move(data_[length_ - 1]);
        removeLast();
    }
    /// Removes the last element; the array must not be empty.
    void removeLast() noexcept { data_[--length_].~T(); }
    /// Removes every element; the block is kept for reuse.
    void clear() noexcept {
        destroy(data_, length_);
        length_ = 0;
    }

    /// Makes room for n elements without further growth.
    void reserve(int n) {
        if (n > capacity_)
            reallocate(n);
    }
    /// Sets the length to n: new elements are copies of v (which may be an element of this
    /// array), elements past n are destroyed.
    void resize(int n, const T& v = T()) {
        if (n < 0)
            n = 0;
        if (n < length_) {
            destroy(data_ + n, length_ - n);
            length_ = n;
            return;
        }
        const T fill(v); // v may live in the block that reserve() is about to move
        reserve(n);
        while (length_ < n)
            new (data_ + length_++) T(fill);
    }
    /// Frees the unused part of the block.
    void shrinkIt() {
        if (capacity_ > length_)
            reallocate(length_);
    }

    /// The index of the first element equal to v (by ==), or -1. O(n).
    int find(const T& v) const noexcept {
        for (int i = 0; i < length_; ++i)
            if (data_[i] == v)
                return i;
        return -1;
    }
    /// 1 when an element equals v. O(n).
    int contains(const T& v) const noexcept { return find(v) >= 0; }

    /// 1 when both have the same length and equal elements in order.
    int operator==(const Tarray& a) const noexcept {
        if (length_ != a.length_)
            return 0;
        for (int i = 0; i < length_; ++i)
            if (!(data_[i] == a.data_[i]))
                return 0;
        return 1;
    }
    /// The negation of ==.
    int operator!=(const Tarray& a) const noexcept { return !(*this == a); }

private:
    static constexpr bool kRelocatesByCopy = std::is_trivially_copyable_v<T>;

    void check(int i) const noexcept {
        if (i < 0 || i >= length_) {
            rptError("Tarray index %d out of range 0..%d", i, length_ - 1);
            std::abort();
        }
    }
    static void destroy(T* p, int n) noexcept {
        if constexpr (!std::is_trivially_destructible_v<T>)
            for (int i = 0; i < n; ++i)
                p[i].~T();
    }
    static void copyConstruct(const T* from, int n, T* to) {
        if constexpr (kRelocatesByCopy) {
            if (n > 0)
                std::memcpy(static_cast<void*>(to), from, sizeof(T) * static_cast<size_t>(n));
        } else {
            int i = 0;
            try {
                for (; i < n; ++i)
                    new (to + i) T(from[i]);
            } catch (...) {
                destroy(to, i);
                throw;
            }
        }
    }
    void grow(int needed) {
        const int most = std::numeric_limits<int>::max();
        const int doubled = capacity_ > most / 2 ? most : 2 * capacity_;
        reallocate(needed > doubled ? needed : (doubled < 4 ? 4 : doubled));
    }
    void reallocate(int n) {
        const size_t bytes = sizeof(T) * static_cast<size_t>(n);
        T* block;
        if constexpr (kRelocatesByCopy) {
            // realloc may extend the block in place; bytes 0 would be freed or not by the C
            // runtime's choice, so an empty array keeps no block at all.
            if (n == 0) {
                std::free(data_);
                block = nullptr;
            } else {
                block = static_cast<T*>(std::realloc(data_, bytes));
                if (!block)
                    throw std::bad_alloc();
            }
        } else {
            block = n ? static_cast<T*>(std::malloc(bytes)) : nullptr;
            if (n && !block)
                throw std::bad_alloc();
            for (int i = 0; i < length_; ++i) {
                new (block + i) T(std::move_if_noexcept(data_[i]));
                data_[i].~T();
            }
            std::free(data_);
        }
        data_ = block;
        capacity_ = n;
    }

    T* data_ = nullptr;
    int length_ = 0;
    int capacity_ = 0;
};

#endif
