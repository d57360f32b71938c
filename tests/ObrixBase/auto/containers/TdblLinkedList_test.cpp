#include "ObrixBase/auto/containers/TdblLinkedList.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/auto/containers/TgroupDLLists.h"
#include "ObrixBase/auto/containers/TrestrictedLinkedList.h"
#include "tests/ObrixBase/auto/containers/ContainerTestValues.h"

namespace {

using obrix::test::Counted;
using obrix::test::makeValue;

// Both directions of the walk, and the length, agree with the model: a broken prev or next
// link, or a stale tail, shows in one of them.
template <class L, class T>
::testing::AssertionResult sameAs(const L& l, const std::list<T>& model) {
    if (l.length() != static_cast<int>(model.size()))
        return ::testing::AssertionFailure() << "length " << l.length() << " vs " << model.size();
    if (!std::equal(l.begin(), l.end(), model.begin(), model.end()))
        return ::testing::AssertionFailure() << "forward walk differs";
    std::vector<T> back;
    for (auto i = l.end(); i != l.begin();)
        back.push_back(*--i);
    if (!std::equal(back.begin(), back.end(), model.rbegin(), model.rend()))
        return ::testing::AssertionFailure() << "backward walk differs";
    return ::testing::AssertionSuccess();
}

template <class T>
class ListModel : public ::testing::Test {
protected:
    void SetUp() override { Counted::live = 0; }
    void TearDown() override { EXPECT_EQ(Counted::live, 0); }
};
using ListElementTypes = ::testing::Types<int, std::string, T3dDblPoint, Counted>;
TYPED_TEST_SUITE(ListModel, ListElementTypes);

TYPED_TEST(ListModel, RandomEditsMatchStdList) {
    std::mt19937 gen(5);
    TdblLinkedList<TypeParam> l, other;
    std::list<TypeParam> model, otherModel;
    for (int step = 0; step < 2000; ++step) {
        const int n = l.length();
        const int pick = n ? static_cast<int>(gen() % (n + 1)) : 0; // n means end()
        auto at = std::next(l.begin(), pick);
        auto mat = std::next(model.begin(), pick);
        const TypeParam v = makeValue<TypeParam>(static_cast<int>(gen() % 50));
        switch (gen() % 9) {
        case 0:
            l.append(v);
            model.push_back(v);
            break;
        case 1:
            l.prepend(v);
            model.push_front(v);
            break;
        case 2:
        case 3:
            l.insert(at, v);
            model.insert(mat, v);
            break;
        case 4:
            if (pick < n) {
                l.remove(at);
                model.erase(mat);
            }
            break;
        case 5:
            EXPECT_EQ(l.removeAll(v), static_cast<int>(std::count(model.begin(), model.end(), v)));
            model.remove(v);
            break;
        case 6:
            if (pick < n) { // to the other list, without copying
                const TypeParam* address = &*at;
                l.moveTo(at, other, other.begin());
                otherModel.splice(otherModel.begin(), model, mat);
                EXPECT_EQ(&other.first(), address);
            } else if (!other.isEmpty()) { // and back to the end of this one
                other.moveTo(other.begin(), l, l.end());
                model.splice(model.end(), otherModel, otherModel.begin());
            }
            break;
        case 7:
            if (pick < n) { // to the front of its own list
                l.moveTo(at, l, l.begin());
                model.splice(model.begin(), model, mat);
            }
            break;
        default:
            if (step % 300 == 0) {
                TdblLinkedList<TypeParam> copy = l;
                l = std::move(copy);
                l.clear();
                model.clear();
            }
        }
        ASSERT_TRUE(sameAs(l, model)) << "step " << step;
        ASSERT_TRUE(sameAs(other, otherModel)) << "step " << step;
    }
}

} // namespace

TEST(TrestrictedLinkedList, KeepsTheMostRecentDistinctValuesWithinItsCapacity) {
    TrestrictedLinkedList<std::string> recent(3);
    std::list<std::string> model;
    std::mt19937 gen(3);
    std::size_t capacity = 3;
    for (int step = 0; step < 500; ++step) {
        const std::string v = "file" + std::to_string(gen() % 6);
        const bool isNew = std::find(model.begin(), model.end(), v) == model.end();
        EXPECT_EQ(recent.add(v), isNew ? 1 : 0);
        model.remove(v);
        model.push_front(v);
        if (model.size() > capacity)
            model.pop_back();
        if (step == 250) {
            recent.setCapacity(2);
            model.resize(capacity = 2);
        }
        ASSERT_TRUE(sameAs(recent.list(), model)) << step;
    }
    EXPECT_EQ(TrestrictedLinkedList<int>(0).capacity(), 1);
}

TEST(TgroupDLLists, OwnsItsListsAndMovesValuesBetweenThemWithoutCopies) {
    Counted::live = 0;
    {
        TgroupDLLists<Counted> layers(2);
        for (int i = 0; i < 5; ++i)
            layers[0].append(Counted(i));
        const int third = layers.addList();
        const Counted* two = &*std::next(layers[0].begin(), 2);
        layers.move(0, std::next(layers[0].begin(), 2), third);
        EXPECT_EQ(&layers[third].first(), two);
        EXPECT_EQ(layers.totalLength(), 5);
        EXPECT_EQ(Counted::live, 5);
        layers.removeList(0); // destroys its four values; the third list is now number 1
        EXPECT_EQ(Counted::live, 1);
        EXPECT_EQ(layers[1].first().v, 2);
        layers.clearLists();
        EXPECT_EQ(layers.listCount(), 2);
        layers[0].append(Counted(7));
    }
    EXPECT_EQ(Counted::live, 0);
}
