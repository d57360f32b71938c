// Drives an AVL tree and an intrusive list with byte-coded operations and checks every
// structural invariant, and the contents against std::set / std::vector models, after every
// operation. Each operation takes two bytes: an opcode and an operand.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstdio>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "ObrixBase/util/vk_avl.h"
#include "ObrixBase/util/vk_ll.h"
#include "tests/support/ContainerVerifiers.h"

namespace {

constexpr int kSlots = 32;

struct TreeItem {
    VK_avl_header avl;
    int key;
    bool linked;
};

struct ListItem {
    ListItem* prev;
    ListItem* next;
    int key;
    bool linked;
};

int treeOrder(void* a, void* b) {
    const int x = static_cast<TreeItem*>(a)->key, y = static_cast<TreeItem*>(b)->key;
    return x < y ? -1 : x > y ? 1 : 0;
}

int listOrder(void* a, void* b) {
    if (!b)
        return 1; // the end of a search
    const int x = static_cast<ListItem*>(a)->key, y = static_cast<ListItem*>(b)->key;
    return x < y ? -1 : x > y ? 1 : 0;
}

[[noreturn]] void fail(const std::string& what) {
    std::fprintf(stderr, "invariant broken: %s\n", what.c_str());
    std::abort();
}

void check(bool ok, const char* what) {
    if (!ok)
        fail(what);
}

struct Session {
    TreeItem tree[kSlots] = {};
    ListItem list[kSlots] = {};
    void* root = nullptr;
    ListItem* head = nullptr;
    std::set<int> treeModel;
    std::vector<ListItem*> listModel;

    void treeOp(unsigned op, unsigned operand) {
        TreeItem& item = tree[operand % kSlots];
        TreeItem probe{{}, static_cast<int>(operand % 64), false};
        switch (op % 5) {
        case 0: // insert
            if (!item.linked) {
                item.key = static_cast<int>(operand % 64);
                const int result = VK_avl_insert(&root, &item, treeOrder);
                check(result == (treeModel.count(item.key) ? 1 : 0), "insert result");
                if (result == 0) {
                    item.linked = true;
                    treeModel.insert(item.key);
                }
            }
            break;
        case 1: // remove, whole-tree rebalancing
        case 2: // plain removal, then an explicit rebalance
            if (item.linked) {
                const int result = op % 5 == 1 ? VK_avl_remove(&root, &item, treeOrder)
                                               : VK_bt_remove(&root, &item, treeOrder);
                check(result == 0, "removal of a linked node");
                if (op % 5 == 2) {
                    check(obrix::test::checkAvlTree(root, treeOrder, nullptr, false).empty(),
                          "order after plain removal");
                    VK_avl_balance(&root);
                }
                item.linked = false;
                treeModel.erase(item.key);
            } else {
                check(VK_avl_remove(&root, &item, treeOrder) == 1, "removal of a stranger");
            }
            break;
        case 3: { // find, successor, predecessor
            const bool present = treeModel.count(probe.key) != 0;
            void* found = VK_avl_find(root, &probe, treeOrder);
            check((found != nullptr) == present, "find");
            auto above = treeModel.upper_bound(probe.key);
            auto below = treeModel.lower_bound(probe.key);
            void* next = VK_avl_next(root, &probe, treeOrder);
            void* prev = VK_avl_prev(root, &probe, treeOrder);
            check((next ? static_cast<TreeItem*>(next)->key : -1) ==
                      (present && above != treeModel.end() ? *above : -1),
                  "successor");
            check((prev ? static_cast<TreeItem*>(prev)->key : -1) ==
                      (present && below != treeModel.begin() ? *std::prev(below) : -1),
                  "predecessor");
            break;
        }
        default: { // walk with an early stop
            int limit = static_cast<int>(operand % 8);
            auto countDown = [](void*, void* user) -> int {
                return --*static_cast<int*>(user) == 0;
            };
            const int stopped = VK_avl_inorder_user(root, countDown, &limit);
            check(stopped == (limit == 0 ? 1 : 0) || operand % 8 == 0, "early stop");
            break;
        }
        }
        std::vector<void*> nodes;
        const std::string fault = obrix::test::checkAvlTree(root, treeOrder, &nodes);
        if (!fault.empty())
            fail(fault);
        check(nodes.size() == treeModel.size(), "tree size");
        auto key = treeModel.begin();
        for (void* n : nodes)
            check(static_cast<TreeItem*>(n)->key == *key++, "tree contents");
    }

    void listOp(unsigned op, unsigned operand) {
        ListItem& item = list[operand % kSlots];
        const size_t at = listModel.empty() ? 0 : (operand / kSlots) % listModel.size();
        switch (op % 6) {
        case 0: // append, or insert in front of a model position
        case 1:
            if (!item.linked) {
                item.key = static_cast<int>(operand % 16);
                ListItem* before = op % 6 == 1 && !listModel.empty() ? listModel[at] : nullptr;
                VK_ll_insert(&head, before, &item);
                listModel.insert(
                    before ? listModel.begin() + static_cast<long>(at) : listModel.end(), &item);
                item.linked = true;
            }
            break;
        case 2: // sorted insertion: in front of the first node not below the new key
            if (!item.linked) {
                item.key = static_cast<int>(operand % 16);
                VK_ll_insert_sorted(&head, &item, listOrder);
                auto place = std::find_if(listModel.begin(), listModel.end(),
                                          [&](ListItem* n) { return listOrder(&item, n) <= 0; });
                listModel.insert(place, &item);
                item.linked = true;
            }
            break;
        case 3: // remove
            if (item.linked) {
                VK_ll_remove(&head, &item);
                check(!item.prev && !item.next, "removed node keeps links");
                listModel.erase(std::find(listModel.begin(), listModel.end(), &item));
                item.linked = false;
            }
            break;
        case 4: // replace a linked node by a free one
            if (!item.linked && !listModel.empty()) {
                item.key = listModel[at]->key;
                VK_ll_replace(&head, listModel[at], &item);
                listModel[at]->linked = false;
                listModel[at] = &item;
                item.linked = true;
            }
            break;
        default: { // unsorted search for a key
            ListItem key{nullptr, nullptr, static_cast<int>(operand % 16), false};
            auto hit = std::find_if(listModel.begin(), listModel.end(),
                                    [&](ListItem* n) { return n->key == key.key; });
            check(VK_ll_find(head, &key, listOrder, 0) == (hit == listModel.end() ? nullptr : *hit),
                  "unsorted find");
            break;
        }
        }
        std::vector<void*> nodes;
        const std::string fault = obrix::test::checkListLinks(head, &nodes);
        if (!fault.empty())
            fail(fault);
        check(nodes == std::vector<void*>(listModel.begin(), listModel.end()), "list contents");
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Session session;
    for (std::size_t i = 0; i + 1 < size; i += 2) {
        const unsigned op = data[i], operand = data[i + 1];
        if (op & 0x80)
            session.listOp(op & 0x7F, operand);
        else
            session.treeOp(op, operand);
    }
    return 0;
}
