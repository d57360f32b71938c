#include "Base/qvTCP/Socket.h"

#include <chrono>
#include <cstring>
#include <functional>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

namespace {

using qvTCP::ClientSocket;
using qvTCP::Server;
using qvTCP::Socket;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// A loopback server whose accepted end the test drives, with `peer` run on a thread of its own
// as the connecting end. Both ends read with a 5 s limit, so a fault shows as a timeout error
// instead of a hung test.
struct LoopbackPair {
    explicit LoopbackPair(std::function<void(ClientSocket&)> peer) {
        server.setLoopbackOnly();
        qvUtil::Error listened = server.listen();
        EXPECT_TRUE(listened.isOk()) << listened.message();
        const int port = server.getPort();
        thread = std::thread([port, peer] {
            ClientSocket client(qvTCP::Address::loopback(port));
            client.setReceiveTimeout(5.0);
            qvUtil::Error connected = client.connect(5.0);
            EXPECT_TRUE(connected.isOk()) << connected.message();
            if (connected.isOk())
                peer(client);
        });
        qvUtil::Error err = server.accept(5.0, accepted);
        EXPECT_TRUE(err.isOk()) << err.message();
        if (accepted)
            accepted->setReceiveTimeout(5.0);
    }
    ~LoopbackPair() { thread.join(); }

    Server server;
    std::unique_ptr<Socket> accepted;
    std::thread thread;
};

void writeLength(Socket& socket, std::uint32_t length) {
    const unsigned char header[4] = {
        static_cast<unsigned char>(length), static_cast<unsigned char>(length >> 8),
        static_cast<unsigned char>(length >> 16), static_cast<unsigned char>(length >> 24)};
    EXPECT_TRUE(socket.write(header, 4).isOk());
}

TEST(QvTCPSocket, EchoesFramesAndRawBytesOverLoopback) {
    const qvString::CString texts[] = {"sent one byte at a time", "", "x",
                                       qvString::CString("nul\0inside", 10),
                                       qvString::CString(Socket::MaxFrameBytes, 'm')};
    LoopbackPair pair([&texts](ClientSocket& client) {
        for (const auto& text : texts) {
            if (&text == texts) { // trickles in a byte at a time and must still arrive whole
                unsigned char frame[64] = {static_cast<unsigned char>(text.size())};
                std::memcpy(frame + 4, text.data(), text.size());
                for (std::size_t i = 0; i < 4 + text.size(); ++i) {
                    ASSERT_TRUE(client.write(frame + i, 1).isOk());
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                }
            } else {
                ASSERT_TRUE(client.write(text).isOk());
            }
            qvString::CString back;
            qvUtil::Error err = client.read(back);
            ASSERT_TRUE(err.isOk()) << err.message();
            EXPECT_EQ(back, text);
        }
        const std::int32_t request = -123456;
        std::int32_t reply = 0;
        ASSERT_TRUE(client.write(&request, sizeof request).isOk());
        ASSERT_TRUE(client.read(&reply, sizeof reply).isOk());
        EXPECT_EQ(reply, request);
    });
    ASSERT_TRUE(pair.accepted);
    EXPECT_GT(pair.server.getPort(), 0);
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        qvString::CString text = "stale";
        qvUtil::Error err = pair.accepted->read(text);
        ASSERT_TRUE(err.isOk()) << err.message();
        ASSERT_TRUE(pair.accepted->write(text).isOk());
    }
    std::int32_t value = 0;
    ASSERT_TRUE(pair.accepted->read(&value, sizeof value).isOk());
    ASSERT_TRUE(pair.accepted->write(&value, sizeof value).isOk());
}

TEST(QvTCPSocket, HandedOverConnectionKeepsWorking) {
    LoopbackPair pair([](ClientSocket& client) {
        // Where the accepted end cannot be handed over it is closed unread; the main thread's
        // checks of the reply are what this test is about.
        qvString::CString text;
        if (client.read(text).isOk()) {
            EXPECT_TRUE(client.write(text + " and back").isOk());
        }
    });
    ASSERT_TRUE(pair.accepted);
    qvTCP::NativeHandle handle = pair.accepted->releaseNativeHandle();
#if defined(_WIN32)
    if (handle == -1)
        GTEST_SKIP() << "this Windows cannot hand a socket over";
#endif
    ASSERT_NE(handle, -1);
    EXPECT_FALSE(pair.accepted->isOpen());
    EXPECT_EQ(pair.accepted->adopt(-1).code(), qvTCP::ErrorNotOpen);
    Socket adopted;
    ASSERT_TRUE(adopted.adopt(handle).isOk());
    adopted.setReceiveTimeout(5.0);
    ASSERT_TRUE(adopted.write(qvString::CString("there")).isOk());
    qvString::CString reply;
    ASSERT_TRUE(adopted.read(reply).isOk());
    EXPECT_EQ(reply, "there and back");
}

TEST(QvTCPSocket, WaitsEndWhenTheirTimeRunsOut) {
    Server idle;
    std::unique_ptr<Socket> none;
    EXPECT_EQ(idle.accept(0.2, none).code(), qvTCP::ErrorNotOpen);
    idle.setLoopbackOnly();
    ASSERT_TRUE(idle.listen().isOk());
    auto start = Clock::now();
    qvUtil::Error err = idle.accept(0.2, none);
    double waited = secondsSince(start);
    EXPECT_TRUE(err.isOk()) << err.message();
    EXPECT_FALSE(none);
    EXPECT_GE(waited, 0.19);
    EXPECT_LT(waited, 2.0);

    // A silent peer: the read gives up after its receive timeout.
    LoopbackPair pair([](ClientSocket& client) {
        qvString::CString unused;
        EXPECT_EQ(client.read(unused).code(), qvTCP::ErrorPeerClosed);
    });
    ASSERT_TRUE(pair.accepted);
    pair.accepted->setReceiveTimeout(0.2);
    start = Clock::now();
    qvString::CString text;
    EXPECT_EQ(pair.accepted->read(text).code(), qvTCP::ErrorTimeout);
    EXPECT_LT(secondsSince(start), 2.0);
    pair.accepted->close();
}

TEST(QvTCPSocket, PeerClosingMidFrameIsAnErrorNotAHang) {
    LoopbackPair pair([](ClientSocket& client) {
        writeLength(client, 100);
        EXPECT_TRUE(client.write("only ten b", 10).isOk());
        client.close();
    });
    ASSERT_TRUE(pair.accepted);
    qvString::CString text = "kept";
    qvUtil::Error err = pair.accepted->read(text);
    EXPECT_EQ(err.code(), qvTCP::ErrorPeerClosed) << err.message();
    EXPECT_EQ(text, "kept");
    // The stream has ended: a raw read fails the same way.
    char byte;
    EXPECT_EQ(pair.accepted->read(&byte, 1).code(), qvTCP::ErrorPeerClosed);
}

TEST(QvTCPSocket, FramesBeyondTheLimitAreRefusedAtBothEnds) {
    // Just over the limit, and a length that a reader allocating first would try to get 4 GB
    // for (and then wait for bytes that never come).
    for (std::uint32_t length : {Socket::MaxFrameBytes + 1, 0xFFFFFFF0u}) {
        LoopbackPair pair([length](ClientSocket& client) {
            // Refused before sending, so the stream stays in step for the next frame.
            qvUtil::Error err = client.write(qvString::CString(Socket::MaxFrameBytes + 1, 'x'));
            EXPECT_EQ(err.code(), qvTCP::ErrorFrameTooLong);
            EXPECT_TRUE(client.write(qvString::CString("in step")).isOk());
            writeLength(client, length);
            qvString::CString unused;
            EXPECT_EQ(client.read(unused).code(), qvTCP::ErrorPeerClosed);
        });
        ASSERT_TRUE(pair.accepted);
        qvString::CString text;
        ASSERT_TRUE(pair.accepted->read(text).isOk());
        EXPECT_EQ(text, "in step");
        const auto start = Clock::now();
        qvUtil::Error err = pair.accepted->read(text);
        EXPECT_LT(secondsSince(start), 1.0);
        EXPECT_EQ(err.code(), qvTCP::ErrorFrameTooLong) << err.message();
        const qvString::CString head =
            qvString::CString::format("String of %u bytes from 127.0.0.1:", unsigned(length));
        const qvString::CString tail = " is longer than the limit of 1048576 bytes";
        EXPECT_EQ(err.message().substr(0, head.size()), head);
        EXPECT_TRUE(err.message().ends_with(tail)) << err.message();
        EXPECT_EQ(text, "in step");
        pair.accepted->close();
    }
}

TEST(QvTCPSocket, AVanishedPeerGivesErrorsOrThrowsThemButNeverKillsTheProcess) {
    LoopbackPair pair([](ClientSocket& client) { client.close(); });
    ASSERT_TRUE(pair.accepted);
    pair.thread.join();
    pair.thread = std::thread([] {});
    // Throwing mode throws the error the call would return.
    pair.accepted->setThrowMode(true);
    qvString::CString text;
    try {
        pair.accepted->read(text);
        ADD_FAILURE() << "read after the peer closed did not throw";
    } catch (const qvUtil::Error& err) {
        EXPECT_EQ(err.code(), qvTCP::ErrorPeerClosed);
    }
    EXPECT_THROW(pair.accepted->write(qvString::CString(Socket::MaxFrameBytes + 1, 'x')),
                 qvUtil::Error);
    pair.accepted->setThrowMode(false);
    // The first writes may still be taken by the system; a later one meets the reset.
    const qvString::CString block(64 * 1024, 'w');
    qvUtil::Error err;
    for (int i = 0; i < 200 && err.isOk(); ++i)
        err = pair.accepted->write(block);
    EXPECT_EQ(err.code(), qvTCP::ErrorSystem) << err.message();
    pair.accepted->close();
    pair.accepted->setThrowMode(true);
    EXPECT_THROW(pair.accepted->write("x", 1), qvUtil::Error);
    pair.accepted->setThrowMode(false);
    EXPECT_EQ(pair.accepted->write("x", 1).code(), qvTCP::ErrorNotOpen);
}

TEST(QvTCPSocket, ConnectFailuresNameHostAndPort) {
    // A port that nothing listens on any more.
    int port = 0;
    {
        Server gone;
        gone.setLoopbackOnly();
        ASSERT_TRUE(gone.listen().isOk());
        port = gone.getPort();
    }
    ClientSocket refused(qvTCP::Address::loopback(port));
    qvUtil::Error err = refused.connect(5.0);
    EXPECT_EQ(err.code(), qvTCP::ErrorSystem);
    const qvString::CString prefix =
        qvString::CString::format("Cannot connect to 127.0.0.1:%d: ", port);
    EXPECT_EQ(err.message().substr(0, prefix.size()), prefix);
    EXPECT_GT(err.message().size(), prefix.size());
    EXPECT_FALSE(refused.isOpen());

    ClientSocket unknown(qvTCP::Address("no-such-host.invalid", 80));
    err = unknown.connect(5.0);
    EXPECT_EQ(err.code(), qvTCP::ErrorSystem);
    EXPECT_EQ(err.message().substr(0, 39), "Cannot connect to no-such-host.invalid:");

    for (int bad : {0, -1, 65536}) {
        ClientSocket outOfRange(qvTCP::Address::loopback(bad));
        err = outOfRange.connect(1.0);
        EXPECT_EQ(err.code(), qvTCP::ErrorBadAddress);
        EXPECT_EQ(err.message(),
                  qvString::CString::format(
                      "Cannot connect to 127.0.0.1:%d: the port must be between 1 and 65535", bad));
    }
    Server badServer(70000);
    EXPECT_EQ(badServer.listen().code(), qvTCP::ErrorBadAddress);
}

TEST(QvTCPSocket, FixedPortCanBeListenedOnAgainAfterItsServerCloses) {
#if defined(_WIN32)
    GTEST_SKIP() << "Windows holds a listening port exclusively; a closed port is reused "
                    "only after its connections have ended";
#endif
    int port = 0;
    {
        // The server end closes first, so its side of the connection lingers in TIME_WAIT.
        LoopbackPair pair([](ClientSocket& client) {
            qvString::CString unused;
            EXPECT_EQ(client.read(unused).code(), qvTCP::ErrorPeerClosed);
        });
        ASSERT_TRUE(pair.accepted);
        port = pair.server.getPort();
        pair.accepted->close();
    }
    Server again(port);
    again.setLoopbackOnly();
    qvUtil::Error err = again.listen();
    EXPECT_TRUE(err.isOk()) << err.message();
    EXPECT_EQ(again.getPort(), port);
}

} // namespace
