#include "Base/qvUtil/Error.h"

#include <gtest/gtest.h>

TEST(Error, DefaultIsSuccessAndFormattedErrorsCarryCodeAndText) {
    qvUtil::Error ok;
    EXPECT_TRUE(ok.isOk());
    EXPECT_EQ(ok.code(), 0);
    EXPECT_EQ(ok.message(), "");

    qvUtil::Error e(22, "cannot open %s (%d)", "a.dat", 2);
    EXPECT_TRUE(e.isError());
    EXPECT_EQ(e.code(), 22);
    EXPECT_EQ(e.message(), "cannot open a.dat (2)");
    EXPECT_EQ(e, qvUtil::Error(22, "cannot open a.dat (2)"));
    EXPECT_FALSE(e == ok);
}
