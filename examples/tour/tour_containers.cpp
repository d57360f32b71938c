// The C containers at work on the tour's own records: a list of curves kept sorted by length
// and an AVL tree of layers looked up by number. Both are intrusive: the records carry the
// links, and the containers never allocate.
#include <cstdio>

#include "ObrixBase/ObrixBase.h"
#include "examples/tour/tour.h"

namespace {

struct Curve {
    Curve* prev; // the two list links come first
    Curve* next;
    const char* name;
    double length;
};

int byLength(void* a, void* b) {
    const double x = static_cast<Curve*>(a)->length, y = static_cast<Curve*>(b)->length;
    return x < y ? -1 : x > y ? 1 : 0;
}

struct Layer {
    VK_avl_header avl; // the tree links come first
    int number;
    const char* name;
};

int byNumber(void* a, void* b) {
    return static_cast<Layer*>(a)->number - static_cast<Layer*>(b)->number;
}

int printLayer(void* node, void* user) {
    auto* layer = static_cast<Layer*>(node);
    std::printf("  layer %2d %s\n", layer->number, layer->name);
    return ++*static_cast<int*>(user) == 3 ? 1 : 0; // stop after three
}

} // namespace

void tourContainers() {
    tourHeading("C containers: a sorted list of curves");
    Curve curves[] = {{nullptr, nullptr, "rail", 12.5},
                      {nullptr, nullptr, "profile", 4.0},
                      {nullptr, nullptr, "guide", 12.5},
                      {nullptr, nullptr, "trim", 7.25}};
    Curve* head = nullptr;
    for (Curve& c : curves)
        VK_ll_insert_sorted(&head, &c, byLength);
    // Equal lengths: the curve inserted last ("guide") comes before the earlier "rail".
    for (Curve* c = head; c; c = static_cast<Curve*>(VK_ll_next(c)))
        std::printf("  %-8s %6.2f\n", c->name, c->length);
    VK_ll_remove(&head, &curves[1]);
    std::printf("  after removing \"profile\": %d curves, first is %s\n", VK_ll_length(head),
                head->name);

    tourHeading("C containers: an AVL tree of layers");
    Layer layers[] = {{{}, 10, "construction"}, {{}, 3, "surfaces"}, {{}, 7, "curves"},
                      {{}, 1, "reference"},     {{}, 12, "trims"},   {{}, 7, "duplicate"}};
    void* root = nullptr;
    for (Layer& l : layers)
        if (VK_avl_insert(&root, &l, byNumber) == 1)
            std::printf("  layer %d is already there: \"%s\" not inserted\n", l.number, l.name);
    Layer key{{}, 7, nullptr};
    auto* found = static_cast<Layer*>(VK_avl_find(root, &key, byNumber));
    auto* after = static_cast<Layer*>(VK_avl_next(root, &key, byNumber));
    std::printf("  layer 7 is %s; the next one is %d (%s)\n", found->name, after->number,
                after->name);
    VK_avl_remove(&root, &layers[0], byNumber);
    std::printf("  the first three after removing layer 10:\n");
    int shown = 0;
    VK_avl_inorder_user(root, printLayer, &shown);
}
