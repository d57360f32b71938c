// The checking build's guard on status codes: a code outside the text table stops the process
// with a message naming the code and the caller, instead of reading beside the table. The
// exact build has nothing to test here.
#include "ObrixBase/util/aa_debug.h"

#include <gtest/gtest.h>

#include "ObrixBase/ObrixBuildOptions.h"

#if OBRIX_CHECKED_INDEXING

TEST(VkPrintErrorDeathTest, ACodeOutsideTheTableStopsNamingTheCodeAndTheCaller) {
    EXPECT_DEATH(Vk_print_error(VK_STATUS_COUNT, "caller.c", 7, "text"),
                 "Vk_print_error: status code 32 is outside 0 to 31 \\(file caller.c, line 7\\)");
    EXPECT_DEATH(Vk_print_conditional(-1, nullptr, 0, "text"),
                 "status code -1 is outside 0 to 31 \\(file \\(null\\), line 0\\)");
}

#endif
