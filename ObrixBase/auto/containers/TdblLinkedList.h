// TdblLinkedList: a doubly linked list of values, for collections that are edited in the
// middle while they are walked. Its nodes are intrusive-list nodes of the C containers
// (vk_ll.h), which do the linking; the class adds typed values, ownership of the nodes and a
// tail pointer for appending in O(1). Nodes move between lists without being copied.
#ifndef OBRIX_AUTO_CONTAINERS_TDBLLINKEDLIST_H
#define OBRIX_AUTO_CONTAINERS_TDBLLINKEDLIST_H

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <type_traits>
#include <utility>

#include "ObrixBase/util/vk_ll.h"

/// A list of T that owns its values, one heap node per value. Copies are deep; a moved-from
/// list is empty. Iterators and references stay valid until their own element is removed,
/// also when the element is moved to another list with moveTo. Out of memory throws
/// std::bad_alloc and leaves the list as it was.
template <class T>
class TdblLinkedList {
    // The two links come first, where the C list routines expect them.
    struct Links {
        void* prev = nullptr;
        void* next = nullptr;
    };
    struct Node : Links {
        template <class... A>
        explicit Node(A&&... a) : value(std::forward<A>(a)...) {}
        T value;
    };
    static Node* node(void* links) noexcept {
        return static_cast<Node*>(static_cast<Links*>(links));
    }
    static void* links(Node* n) noexcept { return static_cast<Links*>(n); }

public:
    /// A bidirectional iterator; end() can be stepped back to the last element.
    template <bool Const>
    class Iterator {
    public:
        ///@{
        /// The standard iterator traits: bidirectional, over T.
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = std::conditional_t<Const, const T*, T*>;
        using reference = std::conditional_t<Const, const T&, T&>;
        ///@}

        Iterator() noexcept = default;
        /// A const iterator from a mutable one.
        template <bool C = Const, class = std::enable_if_t<C>>
        Iterator(const Iterator<false>& i) noexcept : list_(i.list_), node_(i.node_) {}
        /// The value of the current node.
        reference operator*() const noexcept { return node_->value; }
        /// The address of the current node's value.
        pointer operator->() const noexcept { return &node_->value; }
        /// To the next node; past the last node is end().
        Iterator& operator++() noexcept {
            node_ = node(VK_ll_next(links(node_)));
            return *this;
        }
        /// Post-increment: moves on, returns the old position.
        Iterator operator++(int) noexcept {
            Iterator r = *this;
            ++*this;
            return r;
        }
        /// To the previous node; from end() to the last node.
        Iterator& operator--() noexcept {
            node_ = node_ ? node(VK_ll_prev(links(node_))) : list_->tail_;
            return *this;
        }
        /// Post-decrement: moves back, returns the old position.
        Iterator operator--(int) noexcept {
            Iterator r = *this;
            --*this;
            return r;
        }
        /// Same node (two end() iterators are equal).
        bool operator==(const Iterator& o) const noexcept { return node_ == o.node_; }

    private:
        friend class TdblLinkedList;
        template <bool>
        friend class Iterator;
        Iterator(const TdblLinkedList* list, Node* n) noexcept : list_(list), node_(n) {}
        const TdblLinkedList* list_ = nullptr;
        Node* node_ = nullptr;
    };
    ///@{
    /// Iterators over the values in list order; a node's iterator stays valid until that node
    /// is removed.
    using iterator = Iterator<false>;
    using const_iterator = Iterator<true>;
    ///@}
    /// The element type.
    using value_type = T;

    /// The empty list; allocates nothing.
    TdblLinkedList() noexcept = default;
    /// The listed values, in order.
    TdblLinkedList(std::initializer_list<T> values) {
        for (const T& v : values)
            append(v);
    }
    /// A deep copy.
    TdblLinkedList(const TdblLinkedList& l) {
        for (const T& v : l)
            append(v);
    }
    /// Takes l's nodes; l is left empty.
    TdblLinkedList(TdblLinkedList&& l) noexcept
        : head_(std::exchange(l.head_, nullptr)), tail_(std::exchange(l.tail_, nullptr)),
          length_(std::exchange(l.length_, 0)) {}
    /// A deep copy; *this is unchanged when the copy cannot be made.
    TdblLinkedList& operator=(const TdblLinkedList& l) {
        if (this != &l) {
            TdblLinkedList copy(l);
            swap(copy);
        }
        return *this;
    }
    /// Takes l's nodes and frees this list's.
    TdblLinkedList& operator=(TdblLinkedList&& l) noexcept {
        TdblLinkedList taken(std::move(l));
        swap(taken);
        return *this;
    }
    /// Destroys every value and frees every node.
    ~TdblLinkedList() { clear(); }

    /// Exchanges the contents of two lists. O(1).
    void swap(TdblLinkedList& l) noexcept {
        std::swap(head_, l.head_);
        std::swap(tail_, l.tail_);
        std::swap(length_, l.length_);
    }

    /// The number of values. O(1).
    int length() const noexcept { return length_; }
    /// 1 when there are no values.
    int isEmpty() const noexcept { return length_ == 0; }

    ///@{
    /// The range of values in list order; end() is past the last value, and decrementing it
    /// gives the last.
    iterator begin() noexcept { return iterator(this, node(head_)); }
    iterator end() noexcept { return iterator(this, nullptr); }
    const_iterator begin() const noexcept { return const_iterator(this, node(head_)); }
    const_iterator end() const noexcept { return const_iterator(this, nullptr); }
    ///@}

    ///@{
    /// The first and last values; the list must not be empty.
    T& first() noexcept { return node(head_)->value; }
    const T& first() const noexcept { return node(head_)->value; }
    T& last() noexcept { return tail_->value; }
    const T& last() const noexcept { return tail_->value; }
    ///@}

    /// Adds a copy of v at the front. O(1). Returns an iterator to it.
    iterator prepend(const T& v) { return insert(begin(), v); }
    /// Adds a copy of v at the end. O(1). Returns an iterator to it.
    iterator append(const T& v) { return insert(end(), v); }
    /// Adds a copy of v in front of `before` (end() appends). O(1). Returns an iterator to it.
    iterator insert(const_iterator before, const T& v) { return link(before.node_, new Node(v)); }
    /// Adds v, moved, in front of `before`. O(1). Returns an iterator to it.
    iterator insert(const_iterator before, T&& v) {
        return link(before.node_, new Node(std::move(v)));
    }

    /// Removes and destroys the element at `at`. O(1). Returns the iterator after it.
    iterator remove(const_iterator at) noexcept {
        Node* n = at.node_;
        Node* next = node(VK_ll_next(links(n)));
        unlink(n);
        delete n;
        return iterator(this, next);
    }
    ///@{
    /// Removes the first and the last element; the list must not be empty. O(1).
    void removeFirst() noexcept { remove(begin()); }
    void removeLast() noexcept { remove(const_iterator(this, tail_)); }
    ///@}
    /// Removes every element equal to v (by ==). Returns how many. O(n).
    int removeAll(const T& v) noexcept {
        int removed = 0;
        for (iterator i = begin(); i != end();)
            if (*i == v) {
                i = remove(i);
                ++removed;
            } else {
                ++i;
            }
        return removed;
    }
    /// Removes and destroys every element. O(n).
    void clear() noexcept {
        while (head_) {
            Node* n = node(head_);
            head_ = VK_ll_next(head_);
            delete n;
        }
        tail_ = nullptr;
        length_ = 0;
    }

    /// Moves the element at `at` of this list in front of `before` in `to` (which may be this
    /// list) without copying it: iterators to it stay valid and now walk `to`. O(1).
    /// Returns the iterator after the moved element's old place.
    iterator moveTo(const_iterator at, TdblLinkedList& to, const_iterator before) noexcept {
        Node* n = at.node_;
        Node* next = node(VK_ll_next(links(n)));
        if (n == before.node_)
            return iterator(this, next);
        unlink(n);
        to.link(before.node_, n);
        return iterator(this, next);
    }

    ///@{
    /// The first element equal to v (by ==), or end(). O(n).
    iterator find(const T& v) noexcept {
        for (iterator i = begin(); i != end(); ++i)
            if (*i == v)
                return i;
        return end();
    }
    const_iterator find(const T& v) const noexcept {
        return const_cast<TdblLinkedList*>(this)->find(v);
    }
    ///@}
    /// 1 when an element equals v. O(n).
    int contains(const T& v) const noexcept { return find(v) != end(); }

    /// 1 when both hold equal values in the same order.
    int operator==(const TdblLinkedList& l) const noexcept {
        if (length_ != l.length_)
            return 0;
        for (const_iterator a = begin(), b = l.begin(); a != end(); ++a, ++b)
            if (!(*a == *b))
                return 0;
        return 1;
    }
    /// The negation of ==.
    int operator!=(const TdblLinkedList& l) const noexcept { return !(*this == l); }

private:
    // Links n in front of `before`, or after the tail when before is null. The C routine
    // appends by walking the whole list, so the end is linked here from the kept tail.
    iterator link(Node* before, Node* n) noexcept {
        if (before) {
            VK_ll_insert(&head_, links(before), links(n));
        } else if (tail_) {
            n->prev = links(tail_);
            n->next = nullptr;
            tail_->next = links(n);
            tail_ = n;
        } else {
            VK_ll_prepend(&head_, links(n));
            tail_ = n;
        }
        ++length_;
        return iterator(this, n);
    }
    void unlink(Node* n) noexcept {
        if (n == tail_)
            tail_ = node(VK_ll_prev(links(n)));
        VK_ll_remove(&head_, links(n));
        --length_;
    }

    void* head_ = nullptr; // the first node's links, as the C routines hold a list
    Node* tail_ = nullptr;
    int length_ = 0;
};

#endif
