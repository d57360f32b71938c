// One contract for all four structure kinds: ordering, filtering, status codes, walking and
// removal, plus a randomised run of each kind against a std::list model.
#include <algorithm>
#include <list>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/util/DS/ds_structures.h"
#include "ObrixBase/util/aa_debug.h"

namespace {

int values[64];

void* item(int i) {
    return &values[i];
}
int valueOf(void* it) {
    return *static_cast<int*>(it);
}

// Orders members by the int they point to, answering -1, 0 or 1.
int byValue(void* a, void* b) {
    int x = valueOf(*static_cast<void**>(a)), y = valueOf(*static_cast<void**>(b));
    return x < y ? -1 : (x > y ? 1 : 0);
}
// Answers 2 instead of 1 for "greater": insertion moves on only for exactly 1.
int byValueAnsweringTwo(void* a, void* b) {
    int c = byValue(a, b);
    return c == 1 ? 2 : c;
}
int evenOnly(void* it) {
    return valueOf(it) % 2 == 0;
}

class StructureKind : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override {
        for (int i = 0; i < 64; ++i)
            values[i] = i;
        s = DS_create_type(GetParam(), &status, __LINE__, __FILE__);
        ASSERT_NE(s, nullptr);
        ASSERT_NE(s->methods, nullptr);
        m = s->methods;
        ASSERT_EQ(m->get_type(), GetParam());
    }
    void TearDown() override {
        EXPECT_EQ(DS_destructor(&s, nullptr, nullptr, &status), 1);
        EXPECT_EQ(s, nullptr);
    }

    void addAll(std::initializer_list<int> is) {
        for (int i : is)
            ASSERT_EQ(m->add(s, item(i), &status), 1);
    }
    // The visible items of `t` (the fixture's structure by default) front to back, checked
    // against the back-to-front reading.
    std::vector<void*> members(DS_Structure* t = nullptr) {
        t = t ? t : s;
        std::vector<void*> forward, backward;
        int st = 0;
        for (void* n = m->head(t, &st); n; n = m->next(t, n, &st))
            forward.push_back(m->get_data(n, &st));
        for (void* n = m->tail(t, &st); n; n = m->prev(t, n, &st))
            backward.push_back(m->get_data(n, &st));
        std::reverse(backward.begin(), backward.end());
        EXPECT_EQ(forward, backward);
        EXPECT_EQ(m->enumerate(t, &st), int(forward.size()));
        return forward;
    }
    std::vector<void*> items(std::initializer_list<int> is) {
        std::vector<void*> out;
        for (int i : is)
            out.push_back(item(i));
        return out;
    }

    DS_Structure* s = nullptr;
    DS_Jump_table_s* m = nullptr;
    int status = -1;
};

// Insertion moves on only while the comparator answers exactly 1: FIFO always does, FILO
// never, and one answering 2 for "greater" stops each new item at the first member.
TEST_P(StructureKind, FifoKeepsInsertionOrderAndOtherComparatorsPutNewestFirst) {
    addAll({3, 1, 2});
    EXPECT_EQ(members(), items({3, 1, 2}));
    EXPECT_EQ(status, 0);
    EXPECT_EQ(s->ordered, 1);

    for (auto comparator : {&Ds_filo_comparator, &byValueAnsweringTwo}) {
        DS_Structure* t = DS_create_type(GetParam(), &status, __LINE__, __FILE__);
        t->comparator = comparator;
        for (int i : {1, 3, 2})
            m->add(t, item(i), &status);
        EXPECT_EQ(members(t), items({2, 3, 1}));
        DS_destructor(&t, nullptr, nullptr, &status);
    }
}

TEST_P(StructureKind, AddingWithoutComparatorOrStatusPointerClearsOrdered) {
    s->comparator = nullptr;
    addAll({4});
    ASSERT_EQ(m->add(s, item(2), &status), 1);
    EXPECT_EQ(status, VK_CANNOT_SORT);
    EXPECT_EQ(s->ordered, 0);
    EXPECT_EQ(members(), items({4, 2}));
    EXPECT_EQ(m->sort(s, &status), 0);
    EXPECT_EQ(status, VK_CANNOT_SORT);
    // Without a status pointer the structure cannot vouch for its order either.
    s->comparator = &Ds_fifo_comparator;
    s->ordered = 1;
    EXPECT_EQ(m->add(s, item(1), nullptr), 1);
    EXPECT_EQ(s->ordered, 0);
}

TEST_P(StructureKind, FilterHidesStoredMembersAndRemoveReturnsTheNextVisibleNode) {
    addAll({1, 2, 3, 4});
    s->filter = &evenOnly;
    EXPECT_EQ(m->add(s, item(5), &status), 0);
    EXPECT_EQ(status, VK_ITEM_FILTERED);
    EXPECT_EQ(members(), items({2, 4}));
    EXPECT_EQ(m->contains_item(s, item(3), &status), 0);
    EXPECT_EQ(m->find(s, nullptr, item(1), &status), nullptr);
    EXPECT_EQ(m->remove(s, item(3), nullptr, nullptr, &status), nullptr);
    EXPECT_EQ(status, VK_ITEM_NOT_FOUND);

    // Removal hands the slot to the callback.
    static std::vector<void*> seen;
    seen.clear();
    auto record = [](void** slot, void*) -> long {
        seen.push_back(*slot);
        return 1;
    };
    void* next = m->remove(s, item(2), record, nullptr, &status);
    EXPECT_EQ(status, 0);
    ASSERT_NE(next, nullptr);
    EXPECT_EQ(m->get_data(next, &status), item(4));
    EXPECT_EQ(seen, items({2}));
    EXPECT_EQ(m->remove(s, item(4), nullptr, nullptr, &status), nullptr);
    EXPECT_EQ(status, 0);
    s->filter = nullptr;
    EXPECT_EQ(members(), items({1, 3}));
}

TEST_P(StructureKind, FindUsesTheMatchCallbackOrPointerIdentity) {
    addAll({4, 5, 6});
    auto over4 = [](void* it, void*) { return valueOf(it) > 4 ? 1 : 0; };
    void* n = m->find(s, over4, nullptr, &status);
    ASSERT_NE(n, nullptr);
    EXPECT_EQ(m->get_data(n, &status), item(5));
    EXPECT_EQ(m->get_data(m->find(s, nullptr, item(6), &status), &status), item(6));
    EXPECT_EQ(m->find(s, nullptr, nullptr, &status), nullptr);
    EXPECT_EQ(status, VK_ARGUMENT_ERROR);
}

TEST_P(StructureKind, SortOrdersEveryMemberIncludingFilteredOnes) {
    addAll({5, 2, 8, 1, 4});
    s->filter = &evenOnly;
    s->comparator = &byValue;
    ASSERT_EQ(m->sort(s, &status), 1);
    EXPECT_EQ(members(), items({2, 4, 8}));
    s->filter = nullptr;
    EXPECT_EQ(members(), items({1, 2, 4, 5, 8}));
}

TEST_P(StructureKind, WalkHonoursLimitDirectionAndTheWalkersAnswers) {
    addAll({1, 2, 3, 4});
    static std::vector<int> seen;
    auto collect = [](void* it, void* user) {
        seen.push_back(valueOf(it));
        return user ? *static_cast<int*>(user) : 1;
    };
    struct Case {
        int limit, fromEnd, answer;
        long visited;
        int status;
        std::vector<int> seen;
    };
    for (const Case& c : std::vector<Case>{
             {0, 0, 1, 4, VK_NO_ERROR, {1, 2, 3, 4}},
             {0, 1, 1, 4, VK_NO_ERROR, {4, 3, 2, 1}},
             {2, 0, 1, 2, VK_WALK_INCOMPLETE, {1, 2}},
             {2, 1, 1, 2, VK_WALK_INCOMPLETE, {4, 3}},
             {4, 0, 1, 4, VK_NO_ERROR, {1, 2, 3, 4}},
             {0, 0, 0, 1, VK_WALK_TERMINATED, {1}},
             {0, 1, -1, 1, VK_WALK_ERROR, {4}},
         }) {
        seen.clear();
        int answer = c.answer;
        EXPECT_EQ(m->walk(s, collect, &answer, c.limit, c.fromEnd, &status), c.visited);
        EXPECT_EQ(status, c.status);
        EXPECT_EQ(seen, c.seen);
    }
    EXPECT_EQ(m->walk(s, nullptr, nullptr, 0, 0, &status), -1);
    EXPECT_EQ(status, VK_ARGUMENT_ERROR);
}

TEST_P(StructureKind, NullArgumentsGiveStatusOneNeverACrash) {
    EXPECT_EQ(m->add(nullptr, item(1), &status), 0);
    EXPECT_EQ(status, VK_ARGUMENT_ERROR);
    EXPECT_EQ(m->enumerate(nullptr, &status), -1);
    EXPECT_EQ(m->head(nullptr, nullptr), nullptr);
    EXPECT_EQ(m->next(s, nullptr, &status), nullptr);
    EXPECT_EQ(m->get_data(nullptr, &status), nullptr);
    EXPECT_EQ(m->merge(s, nullptr, &status), nullptr);
    EXPECT_EQ(m->destructor(nullptr, nullptr, nullptr, &status), 0);
    EXPECT_EQ(status, VK_ARGUMENT_ERROR);
}

TEST_P(StructureKind, EmptyingPassesEverySlotToTheCallbackAndLeavesItUsable) {
    for (int i = 0; i < 5; ++i) {
        auto* p = static_cast<int*>(std::malloc(sizeof(int)));
        *p = i;
        m->add(s, p, &status);
    }
    s->filter = &evenOnly; // emptying ignores the filter, or odd members would leak
    EXPECT_EQ(DS_empty_list(s, DS_MEMORY_FREE, nullptr, &status), 1);
    s->filter = nullptr;
    EXPECT_EQ(m->enumerate(s, &status), 0);
    addAll({3});
    EXPECT_EQ(members(), items({3}));
}

// The model puts each new item in front of the first equal or greater member: equal items
// come newest first, which callers walking a run of equals rely on.
TEST_P(StructureKind, MatchesAStdListModelOverRandomOperations) {
    s->comparator = &byValue;
    std::list<void*> model;
    std::mt19937 rng(GetParam() * 7919u);
    for (int i = 0; i < 64; ++i)
        values[i] = int(rng() % 16); // many equal values exercise the tie rule
    for (int step = 0; step < 1500; ++step) {
        void* it = item(int(rng() % 64));
        switch (rng() % 4) {
        case 0:
        case 1: {
            ASSERT_EQ(m->add(s, it, &status), 1);
            auto pos = std::find_if(model.begin(), model.end(),
                                    [&](void* x) { return byValue(&it, &x) != 1; });
            model.insert(pos, it);
            break;
        }
        case 2: {
            auto pos = std::find(model.begin(), model.end(), it);
            void* next = m->remove(s, it, nullptr, nullptr, &status);
            if (pos == model.end()) {
                EXPECT_EQ(status, VK_ITEM_NOT_FOUND);
            } else {
                pos = model.erase(pos);
                ASSERT_EQ(next ? m->get_data(next, &status) : nullptr,
                          pos == model.end() ? nullptr : *pos);
            }
            break;
        }
        default: {
            bool present = std::find(model.begin(), model.end(), it) != model.end();
            ASSERT_EQ(m->contains_item(s, it, &status), present ? 1 : 0);
        }
        }
        if (step % 10 == 0) {
            ASSERT_EQ(members(), std::vector<void*>(model.begin(), model.end()))
                << "after step " << step;
        }
    }
    EXPECT_EQ(members(), std::vector<void*>(model.begin(), model.end()));
}

// A tree that lost its balance still keeps its order, so the depth is checked through the
// number of comparator calls that ascending insertion (the worst case for a plain tree) costs.
TEST(BintreeKind, AscendingInsertionStaysLogarithmic) {
    static long calls = 0;
    auto counting = [](void* a, void* b) {
        ++calls;
        return byValue(a, b);
    };
    static int keys[4096];
    int status = 0;
    DS_Structure* s = DS_create_type(3, &status, __LINE__, __FILE__);
    s->comparator = counting;
    for (int i = 0; i < 4096; ++i) {
        keys[i] = i;
        calls = 0;
        s->methods->add(s, &keys[i], &status);
        ASSERT_LE(calls, 18) << "insert " << i; // AVL height bound 1.44 log2(4097)
    }
    DS_destructor(&s, nullptr, nullptr, &status);
}

std::string kindName(const ::testing::TestParamInfo<int>& param) {
    const char* kinds[] = {"", "Dlist", "Slist", "Bintree", "Array"};
    return kinds[param.param];
}

INSTANTIATE_TEST_SUITE_P(AllKinds, StructureKind, ::testing::Values(1, 2, 3, 4), kindName);

} // namespace
