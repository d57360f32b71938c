// Kind 3, the binary tree: an AVL tree (heights kept within one between siblings) whose
// in-order sequence is the structure's member order. A new member's place is found by descent
// with the list kinds' rule (go right while the comparator answers exactly 1), which agrees
// with them whenever the members are in comparator order, and costs O(log n) even for
// insertion order. Nodes are relinked, never copied, so a node keeps its item for its life.
//
// The rebalancing is this kind's own rather than VK_avl_*'s: those trees keep a -1..1 balance
// and a scratch direction in the caller's record, rebalance the whole tree after a removal
// and refuse equal keys, all of which callers of that family rely on; this kind owns its
// nodes, keeps heights and parent links, admits equal members and must stay O(log n) per
// add and remove, so it rebalances along one path from the changed node up.
#include <algorithm>
#include <cstdlib>

#include "ObrixBase/util/DS/ds_kind_internal.h"

namespace {

struct TreeNode {
    void* data; // first, so that a node is its member slot
    TreeNode* left;
    TreeNode* right;
    TreeNode* parent;
    int height; // of the subtree rooted here; a leaf has 1
};

struct TreeHeader {
    TreeNode* root;
    int count;
};

TreeNode* asNode(void** slot) {
    return reinterpret_cast<TreeNode*>(slot);
}
void** asSlot(TreeNode* node) {
    return reinterpret_cast<void**>(node);
}

int height(const TreeNode* n) {
    return n ? n->height : 0;
}
void updateHeight(TreeNode* n) {
    n->height = 1 + std::max(height(n->left), height(n->right));
}
TreeNode* leftmost(TreeNode* n) {
    while (n && n->left)
        n = n->left;
    return n;
}
TreeNode* rightmost(TreeNode* n) {
    while (n && n->right)
        n = n->right;
    return n;
}

struct BintreePolicy {
    static constexpr int kType = 3;
    static constexpr bool kCheapBefore = true;
    static constexpr bool kHasAllocate = false;

    static TreeHeader* header(DS_Structure* s) { return static_cast<TreeHeader*>(s->storage); }
    static TreeNode* root(DS_Structure* s) { return header(s) ? header(s)->root : nullptr; }

    static void** first(DS_Structure* s) { return asSlot(leftmost(root(s))); }
    static void** last(DS_Structure* s) { return asSlot(rightmost(root(s))); }
    static void** after(DS_Structure*, void** node) {
        TreeNode* n = asNode(node);
        if (n->right)
            return asSlot(leftmost(n->right));
        while (n->parent && n->parent->right == n)
            n = n->parent;
        return asSlot(n->parent);
    }
    static void** before(DS_Structure*, void** node) {
        TreeNode* n = asNode(node);
        if (n->left)
            return asSlot(rightmost(n->left));
        while (n->parent && n->parent->left == n)
            n = n->parent;
        return asSlot(n->parent);
    }
    static int count(DS_Structure* s) { return header(s) ? header(s)->count : 0; }

    // Points whatever referred to `old` (its parent's link or the root) at `replacement`.
    static void relink(TreeHeader* h, TreeNode* old, TreeNode* replacement) {
        TreeNode* p = old->parent;
        if (!p)
            h->root = replacement;
        else if (p->left == old)
            p->left = replacement;
        else
            p->right = replacement;
        if (replacement)
            replacement->parent = p;
    }
    static TreeNode* rotateLeft(TreeHeader* h, TreeNode* x) {
        TreeNode* y = x->right;
        relink(h, x, y);
        x->right = y->left;
        if (x->right)
            x->right->parent = x;
        y->left = x;
        x->parent = y;
        updateHeight(x);
        updateHeight(y);
        return y;
    }
    static TreeNode* rotateRight(TreeHeader* h, TreeNode* x) {
        TreeNode* y = x->left;
        relink(h, x, y);
        x->left = y->right;
        if (x->left)
            x->left->parent = x;
        y->right = x;
        x->parent = y;
        updateHeight(x);
        updateHeight(y);
        return y;
    }
    // Restores the AVL balance from `n` up towards the root after an insertion or removal
    // below n. Once a balanced subtree keeps its height, nothing above it can change.
    static void rebalanceUp(TreeHeader* h, TreeNode* n) {
        while (n) {
            const int before = n->height;
            updateHeight(n);
            const int balance = height(n->left) - height(n->right);
            if (balance > 1) {
                if (height(n->left->left) < height(n->left->right))
                    rotateLeft(h, n->left);
                n = rotateRight(h, n);
            } else if (balance < -1) {
                if (height(n->right->right) < height(n->right->left))
                    rotateRight(h, n->right);
                n = rotateLeft(h, n);
            } else if (n->height == before) {
                return;
            }
            n = n->parent;
        }
    }

    static void** insertAfter(DS_Structure* s, void** prev, void* item) {
        TreeHeader* h = header(s);
        if (!h) {
            h = static_cast<TreeHeader*>(std::calloc(1, sizeof(TreeHeader)));
            if (!h)
                return nullptr;
            s->storage = h;
        }
        auto* node = static_cast<TreeNode*>(std::malloc(sizeof(TreeNode)));
        if (!node)
            return nullptr;
        *node = {item, nullptr, nullptr, nullptr, 1};
        // The new node becomes the in-order successor of `prev`: its right child when that is
        // free, else the leftmost place of its right subtree.
        TreeNode* p = asNode(prev);
        if (!h->root) {
            h->root = node;
        } else if (!p) {
            TreeNode* at = leftmost(h->root);
            at->left = node;
            node->parent = at;
        } else if (!p->right) {
            p->right = node;
            node->parent = p;
        } else {
            TreeNode* at = leftmost(p->right);
            at->left = node;
            node->parent = at;
        }
        ++h->count;
        rebalanceUp(h, node->parent);
        return asSlot(node);
    }

    static void** insertPosition(DS_Structure* s, void** itemSlot, DS_Compare_fn comparator) {
        if (comparator == &Ds_fifo_comparator)
            return last(s);
        if (comparator == &Ds_filo_comparator)
            return nullptr;
        TreeNode* prev = nullptr;
        for (TreeNode* n = root(s); n;) {
            if (obrix::ds::callCompare(comparator, itemSlot, asSlot(n)) == 1) {
                prev = n;
                n = n->right;
            } else {
                n = n->left;
            }
        }
        return asSlot(prev);
    }

    static void** erase(DS_Structure* s, void** node, void** keep) {
        TreeHeader* h = header(s);
        TreeNode* n = asNode(node);
        TreeNode* from;
        if (!n->left || !n->right) {
            from = n->parent;
            relink(h, n, n->left ? n->left : n->right);
        } else {
            // The successor m (which has no left child) takes n's place in the tree.
            TreeNode* m = leftmost(n->right);
            if (m->parent != n) {
                from = m->parent;
                m->parent->left = m->right;
                if (m->right)
                    m->right->parent = m->parent;
                m->right = n->right;
                m->right->parent = m;
            } else {
                from = m;
            }
            m->left = n->left;
            m->left->parent = m;
            relink(h, n, m);
            m->height = n->height;
        }
        std::free(n);
        --h->count;
        rebalanceUp(h, from);
        return keep;
    }

    static void clear(DS_Structure* s, DS_Free_fn callback, void* user) {
        TreeHeader* h = header(s);
        if (h) {
            // Callbacks see the members in order; the nodes are freed afterwards, bottom up.
            if (callback)
                for (void** n = first(s); n; n = after(s, n))
                    obrix::ds::callFree(callback, n, user);
            TreeNode* n = h->root;
            while (n) {
                if (n->left) {
                    n = n->left;
                } else if (n->right) {
                    n = n->right;
                } else {
                    TreeNode* parent = n->parent;
                    if (parent)
                        (parent->left == n ? parent->left : parent->right) = nullptr;
                    std::free(n);
                    n = parent;
                }
            }
            std::free(h);
        }
        s->storage = nullptr;
    }
};

} // namespace

DS_DEFINE_KIND_OPERATIONS(bintree, BintreePolicy, nullptr)
