#include "Base/qvRTB/Signal.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

TEST(Signal, CallsConnectedFunctionsInConnectionOrderWithTheSentArguments) {
    qvRTB::Signal<int, const std::string&> signal;
    std::string log;
    signal.connect([&](int n, const std::string& s) { log += "a" + std::to_string(n) + s; });
    qvRTB::Connection second =
        signal.connect([&](int n, const std::string& s) { log += "b" + std::to_string(n) + s; });
    signal.send(1, "x");
    signal(2, "y");
    EXPECT_EQ(log, "a1xb1xa2yb2y");

    second.disconnect();
    log.clear();
    signal.send(3, "z");
    EXPECT_EQ(log, "a3z");
    signal.disconnectAll();
    EXPECT_EQ(signal.numConnections(), 0u);
}

TEST(Signal, AClientsDeathCutsItsConnectionsOnlyAndACopyIsANewClient) {
    qvRTB::SignalVoid signal;
    int kept = 0, cut = 0, copied = 0;
    std::optional<qvRTB::SignalClient> client(std::in_place);
    signal.connect([&] { ++kept; });
    qvRTB::Connection connection = signal.connect(*client, [&] { ++cut; });
    {
        qvRTB::SignalClient copy(*client);
        signal.connect(copy, [&] { ++copied; });
        copy = *client; // assignment takes nothing over either
        signal.send();
    }
    signal.send(); // the copy died; the original's connection stands
    EXPECT_EQ(signal.numConnections(), 2u);

    client.reset();
    signal.send();
    EXPECT_EQ(kept, 3);
    EXPECT_EQ(cut, 2);
    EXPECT_EQ(copied, 1);
    EXPECT_FALSE(connection.connected());
    EXPECT_EQ(signal.numConnections(), 1u);

    qvRTB::SignalClient again;
    signal.connect(again, [&] { ++cut; });
    again.disconnectAll();
    signal.send();
    EXPECT_EQ(cut, 2);
}

TEST(Signal, AScopedConnectionCutsWhatItOwnsWhenItDiesOrIsReplaced) {
    qvRTB::SignalVoid signal;
    int first = 0, second = 0;
    qvRTB::Connection kept;
    {
        qvRTB::ScopedConnection owner(signal.connect([&] { ++first; }));
        qvRTB::ScopedConnection moved(std::move(owner));
        EXPECT_FALSE(owner.connected());
        signal.send();
        moved = qvRTB::ScopedConnection(signal.connect([&] { ++second; })); // cuts the first
        signal.send();
        qvRTB::ScopedConnection released(signal.connect([&] { ++second; }));
        kept = released.release();
    }
    signal.send(); // only the released connection is left
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 2);
    EXPECT_TRUE(kept.connected());
    EXPECT_EQ(signal.numConnections(), 1u);
}
