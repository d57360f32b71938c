// TgroupDLLists: a set of doubly linked lists of one value type held together under one
// owner, such as the objects of a scene sorted into layers. The group owns its lists and
// every value in them, and moves a value from one list to another without copying it.
#ifndef OBRIX_AUTO_CONTAINERS_TGROUPDLLISTS_H
#define OBRIX_AUTO_CONTAINERS_TGROUPDLLISTS_H

#include "ObrixBase/auto/containers/TdblLinkedList.h"
#include "ObrixBase/auto/containers/TobjArray.h"

/// Owns a numbered set of TdblLinkedList<T> (numbered 0 .. listCount() - 1 in the order they
/// were added, renumbered when one is removed) and, through them, every value. Not copyable;
/// movable. List numbers are not checked.
template <class T>
class TgroupDLLists {
public:
    /// The list type the group holds.
    using List = TdblLinkedList<T>;

    /// A group of no lists.
    TgroupDLLists() noexcept = default;
    /// A group of n empty lists.
    explicit TgroupDLLists(int n) {
        for (int i = 0; i < n; ++i)
            addList();
    }

    /// Adds an empty list at the end. Returns its number.
    int addList() {
        lists_.append(new List);
        return lists_.length() - 1;
    }
    /// Destroys list i and its values; the lists after it move down one number.
    void removeList(int i) noexcept { lists_.remove(i); }
    /// The number of lists.
    int listCount() const noexcept { return lists_.length(); }
    ///@{
    /// List i, owned by the group.
    List& list(int i) noexcept { return *lists_[i]; }
    const List& list(int i) const noexcept { return *lists_[i]; }
    List& operator[](int i) noexcept { return list(i); }
    const List& operator[](int i) const noexcept { return list(i); }
    ///@}

    /// Moves the value at `at` of list `from` to the end of list `to` without copying it;
    /// iterators to it stay valid. O(1). Returns the iterator after its old place in `from`.
    typename List::iterator move(int from, typename List::const_iterator at, int to) noexcept {
        return list(from).moveTo(at, list(to), list(to).end());
    }
    /// The number of values in all lists. O(number of lists).
    int totalLength() const noexcept {
        int n = 0;
        for (const List* l : lists_)
            n += l->length();
        return n;
    }
    /// Empties every list; the lists themselves stay.
    void clearLists() noexcept {
        for (List* l : lists_)
            l->clear();
    }

private:
    TobjArray<List> lists_;
};

#endif
