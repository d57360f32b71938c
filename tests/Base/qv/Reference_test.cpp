#include "Base/qv/Reference.h"

#include <gtest/gtest.h>

namespace {
struct Counted : qv::ReferenceCount {
    explicit Counted(int* alive) : alive_(alive) { ++*alive_; }
    ~Counted() override { --*alive_; }
    int* alive_;
};
struct Derived : Counted {
    using Counted::Counted;
};
} // namespace

TEST(Reference, TheLastReferenceDeletesTheObject) {
    int alive = 0;
    {
        qv::Reference<Counted> a(new Counted(&alive));
        EXPECT_EQ(a->referenceCount(), 1);
        {
            qv::Reference<Counted> b = a;
            qv::Reference<Counted> c;
            c = b;
            EXPECT_EQ(a->referenceCount(), 3);
            qv::Reference<Counted> moved = std::move(c);
            EXPECT_TRUE(c.isNull());
            EXPECT_EQ(a->referenceCount(), 3);
        }
        EXPECT_EQ(a->referenceCount(), 1);
        a = a; // self-assignment keeps the object
        EXPECT_EQ(alive, 1);
        a.clear();
        EXPECT_EQ(alive, 0);
    }
    EXPECT_EQ(alive, 0);
}

TEST(Reference, ConvertsToABaseReferenceAndCopiesOfObjectsStartUncounted) {
    int alive = 0;
    qv::Reference<Derived> d(new Derived(&alive));
    qv::Reference<Counted> base = d;
    EXPECT_EQ(d->referenceCount(), 2);
    Counted* copy = new Counted(*d);
    EXPECT_EQ(copy->referenceCount(), 0);
    qv::Reference<Counted> copyRef(copy);
    EXPECT_EQ(copy->referenceCount(), 1);
    EXPECT_EQ(d->referenceCount(), 2);
    d.clear();
    EXPECT_EQ(alive, 1);
    base.clear();
    EXPECT_EQ(alive, 0);
    ++alive; // the copy was made without the counting constructor
    copyRef.clear();
    EXPECT_EQ(alive, 0);
}
