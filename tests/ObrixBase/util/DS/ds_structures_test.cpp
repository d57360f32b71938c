// The framework around the kinds: kind registration, creation, set operations, filtering
// passes, printing and the ready-made comparators.
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/util/DS/ds_structures.h"
#include "ObrixBase/util/DS/vk_register.h"
#include "ObrixBase/util/aa_debug.h"
#include "tests/support/ReportCapture.h"

namespace {

int values[8] = {0, 1, 2, 3, 4, 5, 6, 7};

DS_Structure* listOf(int kind, std::initializer_list<int> is) {
    int st = 0;
    DS_Structure* s = DS_create_type(kind, &st, __LINE__, __FILE__);
    for (int i : is)
        s->methods->add(s, &values[i], &st);
    return s;
}

std::vector<int> contents(DS_Structure* s) {
    std::vector<int> out;
    int st = 0;
    if (!s)
        return out;
    for (void* n = s->methods->head(s, &st); n; n = s->methods->next(s, n, &st))
        out.push_back(*static_cast<int*>(s->methods->get_data(n, &st)));
    return out;
}

std::string hex(const void* p) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%x", unsigned(reinterpret_cast<std::uintptr_t>(p)));
    return buf;
}

TEST(DsStructure, LibraryRegistersFourKindsWithTheListKindHoldingTheObjectTable) {
    DS_Structure* table = Ds_get_object_table();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->methods, Ds_slist_get_methods());
    EXPECT_EQ(table->comparator, DS_DEFAULT_COMPARATOR);
    EXPECT_EQ(table->ordered, 0); // registered at load without a status pointer
    EXPECT_EQ(VK_get_id_registration(1, table, nullptr), Ds_dlist_get_methods());
    EXPECT_EQ(VK_get_id_registration(3, table, nullptr), Ds_bintree_get_methods());
    EXPECT_EQ(VK_get_id_registration(4, table, nullptr), Ds_array_get_methods());

    int status = 0;
    EXPECT_EQ(Ds_register_structure(2, Ds_dlist_get_methods(), &status), 0);
    EXPECT_EQ(status, VK_INVALID_FUNCTION);
    EXPECT_EQ(VK_get_id_registration(2, table, nullptr), Ds_slist_get_methods());
}

TEST(DsStructure, RegistrationNeedsEverySlotButIntersectAndAllocate) {
    int status = 0;
    EXPECT_EQ(Ds_register_structure(90, nullptr, &status), 0);
    EXPECT_EQ(status, VK_ARGUMENT_ERROR);

    static DS_Jump_table_s partial = *Ds_slist_get_methods();
    partial.intersect = nullptr;
    partial.allocate = nullptr;
    partial.get_type = nullptr;
    EXPECT_EQ(Ds_register_structure(91, &partial, &status), 0);
    EXPECT_EQ(status, VK_INVALID_DATA);
    partial.get_type = Ds_slist_get_methods()->get_type;
    EXPECT_EQ(Ds_register_structure(91, &partial, &status), 1);

    DS_Structure* s = listOf(91, {1, 2});
    EXPECT_EQ(s->methods, &partial);
    EXPECT_EQ(DS_intersect(s, s, &status), nullptr);
    EXPECT_EQ(status, VK_INCOMPATIBILITY);
    DS_destructor(&s, nullptr, nullptr, &status);
}

// Creating and destroying each known kind is every structure test's fixture.
TEST(DsStructure, UnknownKindGivesNullWithItsStatusAndDestroyToleratesNull) {
    int status = -1;
    for (int kind : {0, 5, 77, -1}) {
        EXPECT_EQ(DS_create_type(kind, &status, __LINE__, __FILE__), nullptr) << kind;
        EXPECT_EQ(status, VK_ITEM_NOT_FOUND) << kind;
    }
    EXPECT_EQ(DS_create_type(77, nullptr, __LINE__, __FILE__), nullptr);
    EXPECT_EQ(DS_destructor(nullptr, nullptr, nullptr, &status), 0);
    EXPECT_EQ(status, VK_ARGUMENT_ERROR);
}

class DsSetOperations : public ::testing::TestWithParam<int> {};

TEST_P(DsSetOperations, KeepTheFirstStructuresOrderAndNeedOneKindAndComparator) {
    int status = 0;
    DS_Structure* a = listOf(GetParam(), {5, 1, 4, 2});
    DS_Structure* b = listOf(GetParam(), {4, 3, 5});

    DS_Structure* d = DS_difference(a, b, &status);
    EXPECT_EQ(contents(d), (std::vector<int>{1, 2}));
    EXPECT_EQ(d->ordered, 1);
    DS_Structure* i = DS_intersect(a, b, &status);
    EXPECT_EQ(contents(i), (std::vector<int>{5, 4}));
    DS_Structure* m = DS_merge(a, b, &status);
    EXPECT_EQ(contents(m), (std::vector<int>{5, 1, 4, 2, 4, 3, 5}));
    DS_Structure* dup = DS_duplicate(a, nullptr, nullptr, &status);
    EXPECT_EQ(contents(dup), (std::vector<int>{5, 1, 4, 2}));
    EXPECT_EQ(dup->methods, a->methods);

    // Without a status pointer the result never claims to be ordered.
    DS_Structure* quiet = DS_difference(a, b, nullptr);
    EXPECT_EQ(quiet->ordered, 0);

    // An empty difference of a list or tree kind is no structure at all.
    DS_Structure* none = DS_difference(b, b, &status);
    EXPECT_EQ(status, 0);
    if (GetParam() == 4)
        EXPECT_EQ(contents(none), std::vector<int>{});
    else
        EXPECT_EQ(none, nullptr);

    // Both structures need the same kind and the same comparator.
    DS_Structure* otherKind = listOf(GetParam() % 4 + 1, {1});
    DS_Structure* filo = listOf(GetParam(), {1});
    filo->comparator = &Ds_filo_comparator;
    EXPECT_EQ(DS_difference(a, otherKind, &status), nullptr);
    EXPECT_EQ(status, VK_INCOMPATIBILITY);
    EXPECT_EQ(DS_difference(a, filo, &status), nullptr);
    EXPECT_EQ(status, VK_INCOMPATIBILITY);
    EXPECT_EQ(DS_merge(a, filo, &status), nullptr);
    EXPECT_EQ(status, VK_INCOMPATIBILITY);
    EXPECT_EQ(DS_difference(nullptr, a, &status), nullptr);
    EXPECT_EQ(status, VK_ARGUMENT_ERROR);

    for (DS_Structure* s : {a, b, d, i, m, dup, quiet, none, otherKind, filo})
        DS_destructor(&s, nullptr, nullptr, &status);
}

INSTANTIATE_TEST_SUITE_P(AllKinds, DsSetOperations, ::testing::Values(1, 2, 3, 4));

TEST(DsStructure, RemoveUnfilteredItemsKeepsWhatThePredicateKeepsAndRestoresTheFilter) {
    int status = 0;
    DS_Structure* s = listOf(1, {1, 2, 3, 4, 5});
    auto odd = [](void* it) { return *static_cast<int*>(it) % 2; };
    auto small = [](void* it) { return *static_cast<int*>(it) < 3 ? 1 : 0; };
    s->filter = small;
    EXPECT_EQ(DS_remove_unfiltered_items(s, odd, nullptr, nullptr, &status), 1);
    EXPECT_EQ(s->filter, small);
    s->filter = nullptr;
    EXPECT_EQ(contents(s), (std::vector<int>{1, 3, 5}));

    s->methods->set_data(s->methods->head(s, &status), nullptr, &status);
    EXPECT_EQ(DS_remove_nulls(s, &status), 1);
    EXPECT_EQ(contents(s), (std::vector<int>{3, 5}));
    EXPECT_EQ(DS_remove_nulls(nullptr, &status), 0);
    EXPECT_EQ(status, VK_ARGUMENT_ERROR);
    DS_destructor(&s, nullptr, nullptr, &status);
}

TEST(DsStructure, PrintStructureWritesItsFixedLayout) {
    int status = 0;
    DS_Structure* s = listOf(2, {3});
    void* node = s->methods->head(s, &status);
    obrix::test::ReportCapture capture;
    DS_print_structure(s, nullptr, nullptr, &status);
    std::vector<std::string> expected = {
        "Structure 0x" + hex(s) + "\n",
        ">>>",
        "Filter = 0x0\n",
        "Comparator = 0x" + hex(reinterpret_cast<void*>(&Ds_fifo_comparator)) + "\n",
        "Ordered = TRUE\n",
        "Filtered Member list =\n",
        ">>>",
        "Item 0x" + hex(node) + ":\n",
        "0x" + hex(&values[3]) + "\n",
        "<<<",
        "<<<"};
    EXPECT_EQ(capture.texts(), expected);

    capture.clear();
    DS_print_structure(nullptr, nullptr, nullptr, &status);
    DS_print(s, nullptr, nullptr, &status);
    EXPECT_EQ(capture.texts(), std::vector<std::string>{"Null structure\n"});
    DS_destructor(&s, nullptr, nullptr, &status);
}

TEST(DsStructure, ReadyMadeComparatorsAnswerMinusOneZeroOrOne) {
    void* lo = &values[0];
    void* hi = &values[1];
    EXPECT_EQ(Ds_default_comparator(&hi, &lo), 1);
    EXPECT_EQ(Ds_default_comparator(&lo, &lo), 0);
    EXPECT_EQ(Ds_default_comparator(nullptr, &lo), 0);
    EXPECT_EQ(Ds_fifo_comparator(nullptr, nullptr), 1);
    EXPECT_EQ(Ds_filo_comparator(nullptr, nullptr), -1);

    // The string order itself is checked through the structures below.
    char abc[] = "abc", high[] = "\xe9";
    char *pAbc = abc, *pHigh = high;
    EXPECT_EQ(Ds_string_comparator(&pHigh, &pAbc), 1); // bytes compare unsigned
    EXPECT_EQ(Ds_string_comparator(&pAbc, nullptr), 0);
    EXPECT_EQ(Ds_string_find(abc, nullptr), 0);
}

TEST(DsStructure, StringCallbacksWorkThroughTheFrameworkInEveryKind) {
    char names[][6] = {"pear", "apple", "fig", "apple"};
    for (int kind = 1; kind <= 4; ++kind) {
        int status = 0;
        DS_Structure* s = DS_create_type(kind, &status, __LINE__, __FILE__);
        DS_set_comparator(s, DS_STRING_COMPARATOR, &status);
        for (char* name : names)
            s->methods->add(s, name, &status);
        std::vector<std::string> order;
        for (void* n = s->methods->head(s, &status); n; n = s->methods->next(s, n, &status))
            order.emplace_back(static_cast<char*>(s->methods->get_data(n, &status)));
        EXPECT_EQ(order, (std::vector<std::string>{"apple", "apple", "fig", "pear"})) << kind;
        char key[] = "fig";
        void* found = s->methods->find(s, DS_STRING_FIND, key, &status);
        ASSERT_NE(found, nullptr) << kind;
        EXPECT_EQ(s->methods->get_data(found, &status), names[2]) << kind;
        DS_destructor(&s, nullptr, nullptr, &status);
    }
}

// The comparator and filter registries are process-wide and never shrink, so these run in a
// child process and leave the rest of the suite with empty registries.
int registeredFilter(void*) {
    return 1;
}
int unregisteredFilter(void*) {
    return 1;
}

TEST(DsStructureDeathTest, RegisteredCallbacksBecomeTheOnlyAcceptedOnes) {
    EXPECT_EXIT(
        {
            int status = 0;
            DS_Structure* s = listOf(2, {});
            // Before any registration every function is accepted.
            DS_set_filter(s, &unregisteredFilter, &status);
            bool ok = status == 0 && s->filter == &unregisteredFilter;
            ok &= DS_register_comparator(0, &Ds_filo_comparator, &status) == 1;
            ok &= DS_register_comparator(0, &Ds_fifo_comparator, &status) == 0 &&
                  status == VK_INVALID_FUNCTION;
            ok &= DS_set_comparator(s, DS_DEFAULT_COMPARATOR, &status) == &Ds_fifo_comparator &&
                  status == VK_ITEM_NOT_FOUND && s->comparator == &Ds_fifo_comparator;
            ok &= DS_set_comparator(s, &Ds_filo_comparator, &status) == &Ds_fifo_comparator &&
                  status == 0 && s->comparator == &Ds_filo_comparator;
            ok &= DS_get_comparator_function(0, &status) == &Ds_filo_comparator;
            ok &= DS_get_comparator_function(1, &status) == nullptr && status == VK_ITEM_NOT_FOUND;
            ok &= DS_get_comparator_index(&Ds_filo_comparator, &status) == 0;
            ok &= DS_get_comparator_index(&Ds_fifo_comparator, &status) == -1;
            ok &= DS_register_filter(4, &registeredFilter, &status) == 1;
            DS_set_filter(s, nullptr, &status);
            ok &= status == VK_ITEM_NOT_FOUND && s->filter == &unregisteredFilter;
            ok &= DS_get_filter_index(&registeredFilter, &status) == 4;
            DS_destructor(&s, nullptr, nullptr, &status);
            std::exit(ok ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

} // namespace
