// Arbitrary bytes arriving on a connection, read as string frames with Socket::read(CString&).
// The bytes go through one end of a local socket pair, which is then closed; the other end
// reads frames until it fails. A frame is checked against a decoding of the input done here:
// whole frames come back byte for byte, a length over the limit is refused (libFuzzer's malloc
// limit catches an allocation made for it first), and input that ends inside a frame is a
// closed peer, never a wait. Run: ./build/fuzz/bin/fuzz_tcp_frames -max_total_time=180
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <sys/socket.h>

#include "Base/qvTCP/Socket.h"

namespace {

// What a local socket pair buffers without a reader; longer inputs are skipped.
constexpr std::size_t MaxInput = 64 * 1024;

void check(bool ok, const char* what) {
    if (!ok) {
        std::fprintf(stderr, "frame reading broken: %s\n", what);
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > MaxInput)
        return 0;
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0)
        return 0;
    qvTCP::Socket writer, reader;
    check(writer.adopt(ends[0]).isOk() && reader.adopt(ends[1]).isOk(), "socket pair taken over");
    // A reader that waited for bytes that never come would fail with a timeout, caught below.
    reader.setReceiveTimeout(2.0);
    check(writer.write(data, size).isOk(), "input written");
    writer.close();

    std::size_t at = 0;
    for (;;) {
        qvString::CString text = "before";
        qvUtil::Error err = reader.read(text);
        if (size - at < 4) {
            check(err.code() == qvTCP::ErrorPeerClosed, "end inside a length is a closed peer");
            break;
        }
        std::uint32_t length = std::uint32_t(data[at]) | std::uint32_t(data[at + 1]) << 8 |
                               std::uint32_t(data[at + 2]) << 16 |
                               std::uint32_t(data[at + 3]) << 24;
        if (length > qvTCP::Socket::MaxFrameBytes) {
            check(err.code() == qvTCP::ErrorFrameTooLong, "long frame refused");
            check(text == "before", "refused frame leaves the text alone");
            break;
        }
        if (size - at - 4 < length) {
            check(err.code() == qvTCP::ErrorPeerClosed, "end inside a frame is a closed peer");
            check(text == "before", "broken frame leaves the text alone");
            break;
        }
        check(err.isOk(), "whole frame read");
        check(text.size() == length && std::memcmp(text.data(), data + at + 4, length) == 0,
              "frame bytes intact");
        at += 4 + length;
    }
    return 0;
}
