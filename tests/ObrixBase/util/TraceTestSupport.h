// Helpers of the trace log's tests: the records of a ring (live, or from a file or an image
// of one).
#ifndef OBRIX_TESTS_OBRIXBASE_UTIL_TRACETESTSUPPORT_H
#define OBRIX_TESTS_OBRIXBASE_UTIL_TRACETESTSUPPORT_H

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ObrixBase/util/VeskoTrace.h"
#include "tests/support/ScopedEnv.h"

namespace obrix::test {

inline void collectText(void* lines, const char* text) {
    static_cast<std::vector<std::string>*>(lines)->push_back(text);
}

/// The records that VeskoTrace::dump hands out now.
inline std::vector<std::string> ringRecords() {
    std::vector<std::string> lines;
    VeskoTrace::dump(collectText, &lines);
    return lines;
}

/// The records recovered from the ring file at path; a failure fails the test.
inline std::vector<std::string> recordsOf(const char* path,
                                          VeskoTrace::RecoverResult* result = nullptr) {
    std::vector<std::string> lines;
    const qvUtil::Error error = VeskoTrace::recover(path, collectText, &lines, result);
    EXPECT_TRUE(error.isOk()) << error.message();
    return lines;
}

/// The records recovered from an image of a ring file.
inline std::vector<std::string> recordsOf(const std::string& image,
                                          VeskoTrace::RecoverResult* result = nullptr) {
    std::vector<std::string> lines;
    const qvUtil::Error error =
        VeskoTrace::recover(image.data(), image.size(), collectText, &lines, result);
    EXPECT_TRUE(error.isOk()) << error.message();
    return lines;
}

} // namespace obrix::test

#endif
