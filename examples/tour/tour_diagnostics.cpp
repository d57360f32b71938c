// Diagnostics and the structure framework: status texts, a sorted and filtered structure,
// and a registration table of named services.
#include <cstdio>

#include "ObrixBase/ObrixBase.h"
#include "examples/tour/tour.h"

namespace {

struct Part {
    const char* name;
    double weight; // kg
};

// Orders members by weight; the comparator receives the addresses of two member slots.
int byWeight(void* a, void* b) {
    const Part* x = *static_cast<Part**>(a);
    const Part* y = *static_cast<Part**>(b);
    return x->weight < y->weight ? -1 : (x->weight > y->weight ? 1 : 0);
}

int lightOnly(void* item) {
    return static_cast<Part*>(item)->weight < 2.0;
}

void printParts(DS_Structure* s, const char* title) {
    int status = 0;
    AA_debug_print("%s (%d):\n", title, s->methods->enumerate(s, &status));
    AA_set_indent(-1);
    for (void* n = s->methods->head(s, &status); n; n = s->methods->next(s, n, &status)) {
        auto* part = static_cast<Part*>(s->methods->get_data(n, &status));
        AA_indent();
        AA_debug_print("%-8s %5.2f kg\n", part->name, part->weight);
    }
    AA_set_indent(-2);
}

} // namespace

void tourDiagnostics() {
    tourHeading("Diagnostics and structures");
    AA_set_print_out(AA_OUTPUT_STDOUT, nullptr);

    AA_debug_print("status codes: 1 \"%s\", 12 \"%s\", 16 \"%s\"\n", Vk_error_text[1],
                   Vk_error_text[12], Vk_error_text[16]);

    // A binary tree kept in weight order, then viewed through a filter.
    static Part parts[] = {
        {"bracket", 2.5}, {"hinge", 0.4}, {"panel", 7.0}, {"clip", 0.1}, {"rail", 1.8}};
    int status = 0;
    DS_Structure* tree = DS_create_type(DS_KIND_AVL, &status, __LINE__, __FILE__);
    DS_set_comparator(tree, &byWeight, &status);
    for (Part& p : parts)
        tree->methods->add(tree, &p, &status);
    printParts(tree, "parts by weight");

    DS_set_filter(tree, &lightOnly, &status);
    printParts(tree, "light parts");
    Part heavy = {"casting", 12.0};
    tree->methods->add(tree, &heavy, &status);
    AA_debug_print("adding a %.1f kg casting: status %d \"%s\"\n", heavy.weight, status,
                   Vk_error_text[status]);
    DS_destructor(&tree, nullptr, nullptr, &status);

    // A registration table: identifiers to items, first registration wins.
    static const char* services[] = {"mesher", "renderer", "exporter"};
    DS_Structure* table = nullptr;
    for (int id = 0; id < 3; ++id)
        VK_register_item(10 * id, const_cast<char*>(services[id]), &table, &status);
    VK_register_item(10, const_cast<char*>("duplicate"), &table, &status);
    AA_debug_print("registering id 10 again: status %d \"%s\"\n", status, Vk_error_text[status]);
    AA_debug_print("id 20 is %s; \"mesher\" has id %d\n",
                   static_cast<const char*>(VK_get_id_registration(20, table, &status)),
                   VK_get_items_registration_id(const_cast<char*>(services[0]), table, &status));
    VK_clear_registrations(table, &status);
    DS_destructor(&table, nullptr, nullptr, &status);

    Vk_print_conditional(0, __FILE__, __LINE__, "nothing to report for status 0");
    AA_set_print_out(AA_OUTPUT_STDERR, nullptr);
}
