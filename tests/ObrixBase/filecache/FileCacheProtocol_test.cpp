#include "ObrixBase/filecache/FileCacheProtocolClient.h"

#include <cstring>
#include <thread>

#include <gtest/gtest.h>

#include "Base/qvTCP/Socket.h"
#include "tests/ObrixBase/filecache/CacheServerDouble.h"

namespace {

// Two ends of one loopback connection.
struct Wire {
    std::unique_ptr<qvTCP::Socket> near, far;
    Wire() {
        qvTCP::Server server(-1, 1);
        server.setLoopbackOnly();
        server.listen();
        auto client =
            std::make_unique<qvTCP::ClientSocket>(qvTCP::Address::loopback(server.getPort()));
        client->connect();
        server.accept(5.0, far);
        near = std::move(client);
    }
};

std::string bytes(std::initializer_list<std::string> parts) {
    std::string all;
    for (const std::string& p : parts)
        all += p;
    return all;
}
template <class T>
std::string raw(T value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}
std::string frame(const std::string& text) {
    return raw(static_cast<std::uint32_t>(text.size())) + text;
}

// Reads exactly n bytes from peer, then answers with reply.
std::string exchange(qvTCP::Socket& peer, std::size_t n, const std::string& reply) {
    std::string got(n, '\0');
    peer.read(got.data(), n);
    peer.write(reply.data(), reply.size());
    return got;
}

} // namespace

TEST(FileCacheProtocolClient, WritesEachRequestAndReadsEachReplyByteForByte) {
    Wire wire;
    qvObrixBase::FileCacheProtocolClient client;
    client.setSocket(*wire.near);
    EXPECT_TRUE(wire.near->throwMode());
    std::string sent;
    auto peer = [&](std::size_t n, std::string reply) {
        return std::thread([&, n, reply] { sent = exchange(*wire.far, n, reply); });
    };

    std::string request = bytes(
        {raw<std::int32_t>(0), frame("/d"), raw<std::int32_t>(-3), raw<std::int64_t>(1ll << 40)});
    auto t = peer(request.size(), raw<std::int32_t>(0) + frame("ignored"));
    EXPECT_TRUE(client.initialize("/d", -3, 1ll << 40).isOk()); // code 0: success whatever the text
    t.join();
    EXPECT_EQ(sent, request);

    request = raw<std::int32_t>(1) + frame("key");
    t = peer(request.size(), frame("/d/f") + raw<std::int64_t>(-5) + raw<std::int32_t>(0x100));
    qvString::CString path;
    std::int64_t time = 0;
    EXPECT_TRUE(client.acquire("key", path, time)); // any non-zero bool is true
    t.join();
    EXPECT_EQ(sent, request);
    EXPECT_EQ(path, "/d/f");
    EXPECT_EQ(time, -5);

    request = raw<std::int32_t>(2) + frame("key") + frame("/d/f");
    t = peer(request.size(), raw<std::int32_t>(0));
    EXPECT_FALSE(client.add("key", "/d/f"));
    t.join();
    EXPECT_EQ(sent, request);

    request = raw<std::int32_t>(3) + frame("key") + raw<std::int32_t>(1);
    t = peer(request.size(), raw<std::int32_t>(1));
    EXPECT_TRUE(client.release("key", true));
    t.join();
    EXPECT_EQ(sent, request);

    request = raw<std::int32_t>(4) + frame("key");
    t = peer(request.size(), raw<std::int32_t>(0));
    client.setAccessed("key");
    t.join();
    EXPECT_EQ(sent, request);

    // A reply cut short by the peer's end is a refusal, never a hang or a throw.
    t = std::thread([&] {
        sent = exchange(*wire.far, 4 + 4 + 3, frame("/d/f"));
        wire.far->close();
    });
    EXPECT_FALSE(client.acquire("key", path, time));
    t.join();
    EXPECT_FALSE(client.initialize("/d", 0, 0).isOk());
}

TEST(FileCacheProtocolServer, AnUnknownCodeIsConsumedAloneAndAnsweredWithNothing) {
    obrix::test::ScratchDirectory dir;
    obrix::test::CacheServerDouble server{dir};
    qvTCP::ClientSocket client(qvTCP::Address::loopback(server.port()));
    ASSERT_TRUE(client.connect().isOk());
    // 99 is no request: the next four bytes are read as the code of a SetAccessed.
    const std::string request = raw<std::int32_t>(99) + raw<std::int32_t>(4) + frame("k");
    ASSERT_TRUE(client.write(request.data(), request.size()).isOk());
    std::int32_t reply = -1;
    ASSERT_TRUE(client.read(&reply, sizeof reply).isOk());
    EXPECT_EQ(reply, 0);
    client.close();
    EXPECT_EQ(server.log(), (std::vector<std::string>{"setAccessed k"}));
}
