#include "programs/qvcached/WireFormat.h"

#include <gtest/gtest.h>

using qvcached::DecodeStatus;

namespace {

template <class T>
std::string raw(T value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

} // namespace

TEST(WireFormat, RequestsDecodeOnlyWhenWholeAndOverlongFramesAreRefusedUnread) {
    const std::string add =
        raw<std::int32_t>(2) + raw<std::uint32_t>(3) + "key" + raw<std::uint32_t>(2) + "/p";
    qvcached::Request request;
    std::size_t used = 0;
    for (std::size_t n = 0; n < add.size(); ++n)
        EXPECT_EQ(qvcached::decodeRequest(add.data(), n, request, used), DecodeStatus::Incomplete);
    const std::string two = add + raw<std::int32_t>(3);
    ASSERT_EQ(qvcached::decodeRequest(two.data(), two.size(), request, used),
              DecodeStatus::Complete);
    EXPECT_EQ(used, add.size());
    EXPECT_EQ(request.text, "key");
    EXPECT_EQ(request.path, "/p");

    const std::string unknown = raw<std::int32_t>(-7) + add;
    EXPECT_EQ(qvcached::decodeRequest(unknown.data(), unknown.size(), request, used),
              DecodeStatus::UnknownCode);
    EXPECT_EQ(used, 4u);

    // A 4 GB length is refused from its 8 bytes alone, before anything else arrives.
    const std::string huge = raw<std::int32_t>(1) + raw<std::uint32_t>(0xFFFFFFFFu);
    EXPECT_EQ(qvcached::decodeRequest(huge.data(), huge.size(), request, used),
              DecodeStatus::FrameTooLong);
    const std::string release =
        raw<std::int32_t>(3) + raw<std::uint32_t>(1) + "k" + raw<std::int32_t>(-2);
    ASSERT_EQ(qvcached::decodeRequest(release.data(), release.size(), request, used),
              DecodeStatus::Complete);
    EXPECT_TRUE(request.flag); // any non-zero bool is true

    std::string reply;
    qvcached::putError(reply, 0, "ignored");
    EXPECT_EQ(reply, raw<std::int32_t>(0) + raw<std::uint32_t>(0));
}
