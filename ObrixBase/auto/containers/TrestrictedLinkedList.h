// TrestrictedLinkedList: a most-recent-first list of distinct values with a length limit, such
// as the recently opened files or the last used tools. Adding a value puts it at the front;
// adding one that is already there moves it to the front instead of repeating it; and when
// the list is full the oldest value at the back drops out.
#ifndef OBRIX_AUTO_CONTAINERS_TRESTRICTEDLINKEDLIST_H
#define OBRIX_AUTO_CONTAINERS_TRESTRICTEDLINKEDLIST_H

#include "ObrixBase/auto/containers/TdblLinkedList.h"

/// A TdblLinkedList restricted in two ways: no two elements are equal (by ==), and there are
/// never more than capacity() of them. Elements are added only at the front, through add, so
/// the order is always most recent first. Owns copies of its values as TdblLinkedList does;
/// read-only iteration. add and contains cost O(n).
template <class T>
class TrestrictedLinkedList {
public:
    /// Iterates the values, most recent first.
    using const_iterator = typename TdblLinkedList<T>::const_iterator;

    /// An empty list holding at most `capacity` values; a capacity below 1 is taken as 1.
    explicit TrestrictedLinkedList(int capacity) noexcept
        : capacity_(capacity < 1 ? 1 : capacity) {}

    /// The length limit.
    int capacity() const noexcept { return capacity_; }
    /// Changes the limit (below 1 is taken as 1), dropping the oldest values beyond it.
    void setCapacity(int capacity) noexcept {
        capacity_ = capacity < 1 ? 1 : capacity;
        trim();
    }

    /// Puts v at the front. A value equal to v already in the list is moved to the front
    /// (keeping the stored one, not copying v); otherwise a copy of v goes in front and, when
    /// the list is full, the oldest value is destroyed. Returns 1 when v was new, 0 when it
    /// was moved.
    int add(const T& v) {
        const const_iterator at = list_.find(v);
        if (at != list_.end()) {
            list_.moveTo(at, list_, list_.begin());
            return 0;
        }
        list_.prepend(v);
        trim();
        return 1;
    }
    /// Removes the value equal to v. Returns 1 when there was one.
    int remove(const T& v) noexcept { return list_.removeAll(v); }
    /// Removes every value.
    void clear() noexcept { list_.clear(); }

    /// The number of values, at most capacity().
    int length() const noexcept { return list_.length(); }
    /// 1 when there are no values.
    int isEmpty() const noexcept { return list_.isEmpty(); }
    /// 1 when a value equals v.
    int contains(const T& v) const noexcept { return list_.contains(v); }
    /// The most recent value; the list must not be empty.
    const T& first() const noexcept { return list_.first(); }
    ///@{
    /// The values, most recent first.
    const_iterator begin() const noexcept { return list_.begin(); }
    const_iterator end() const noexcept { return list_.end(); }
    ///@}
    /// The values as a plain list, most recent first.
    const TdblLinkedList<T>& list() const noexcept { return list_; }

private:
    void trim() noexcept {
        while (list_.length() > capacity_)
            list_.removeLast();
    }

    TdblLinkedList<T> list_;
    int capacity_;
};

#endif
