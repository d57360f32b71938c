#include "ObrixBase/auto/containers/TautoArrayBase.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "ObrixBase/auto/containers/TcharPtrArray.h"
#include "ObrixBase/auto/containers/TobjArray.h"
#include "tests/ObrixBase/auto/containers/ContainerTestValues.h"

namespace {

using obrix::test::Counted;

struct Shape {
    virtual ~Shape() = default;
};
struct Circle : Shape, Counted {
    explicit Circle(int r) : Counted(r) {}
};

} // namespace

TEST(TobjArray, DestroysEachObjectExactlyOnceUnlessReleased) {
    Counted::live = 0;
    {
        TobjArray<Counted> a;
        for (int i = 0; i < 10; ++i)
            a.append(new Counted(i));
        a.append(std::make_unique<Counted>(10));
        a.append(nullptr); // held, never deleted
        EXPECT_EQ(Counted::live, 11);
        a.remove(0);
        a.replace(0, new Counted(99));
        a.replace(0, a[0]); // replacing an object by itself keeps it
        EXPECT_EQ(Counted::live, 10);
        EXPECT_EQ(a[0]->v, 99);
        std::unique_ptr<Counted> kept = a.release(1);
        EXPECT_EQ(kept->v, 2);
        EXPECT_EQ(a.find(kept.get()), -1);
        EXPECT_EQ(Counted::live, 10);
        TobjArray<Counted> b = std::move(a); // the new owner deletes, the old does not
        EXPECT_TRUE(a.isEmpty());
        int sum = 0;
        for (Counted* c : b)
            sum += c ? c->v : 0;
        EXPECT_EQ(sum, 99 + (3 + 4 + 5 + 6 + 7 + 8 + 9) + 10);
        b = TobjArray<Counted>(); // assignment deletes what b held
        EXPECT_EQ(Counted::live, 1);
    }
    EXPECT_EQ(Counted::live, 0);
    // Derived objects are deleted through the base's virtual destructor.
    {
        TobjArray<Shape> shapes;
        shapes.append(new Circle(1));
        shapes.insert(0, new Circle(2));
    }
    EXPECT_EQ(Counted::live, 0);
}

TEST(TcharPtrArray, OwnsCopiesOfTheStrings) {
    TcharPtrArray a;
    {
        std::string temporary = "first";
        a.append(temporary.c_str());
        temporary = "overwritten";
    }
    a.append(nullptr);
    a.insert(0, "zero");
    EXPECT_STREQ(a[1], "first");
    EXPECT_EQ(a[2], nullptr);
    EXPECT_EQ(a.find("first"), 1);
    EXPECT_EQ(a.find(nullptr), 2);
    EXPECT_EQ(a.find("absent"), -1);
    a.replace(1, a[1]); // a string replaced by itself survives the free of the old copy
    EXPECT_STREQ(a[1], "first");
    TcharPtrArray b = a;
    EXPECT_TRUE(b == a);
    EXPECT_NE(b[0], a[0]); // deep: separate copies
    b.replace(0, "changed");
    EXPECT_STREQ(a[0], "zero");
    EXPECT_TRUE(b != a);
    b = a;
    EXPECT_TRUE(b == a);
    b.remove(0);
    EXPECT_EQ(b.length(), 2);
}
