// How a send reaches its functions: argument copies, connections cut or made while a send is
// under way, and handles that outlive their signal.
#include "Base/qvRTB/Signal.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

TEST(SignalDelivery, ByValueArgumentsAreCopiedPerFunctionAndReferencesPassedThrough) {
    qvRTB::Signal<std::vector<int>, const std::string&> signal;
    std::vector<std::size_t> sizes;
    std::vector<const std::string*> seen;
    for (int i = 0; i < 3; ++i)
        signal.connect([&](std::vector<int> v, const std::string& s) {
            sizes.push_back(v.size());
            v.push_back(0); // must not reach the next function
            seen.push_back(&s);
        });
    const std::string text = "t";
    signal.send({1, 2}, text);
    EXPECT_EQ(sizes, (std::vector<std::size_t>{2, 2, 2}));
    EXPECT_EQ(seen, (std::vector<const std::string*>{&text, &text, &text}));

    struct Counter {
        int n = 0;
        void add(int k) { n += k; }
    } counter;
    qvRTB::Signal<Counter*, int> adding; // a member function takes its object first
    adding.connect(&Counter::add);
    adding.send(&counter, 5);
    EXPECT_EQ(counter.n, 5);
}

TEST(SignalDelivery, CutsDuringASendTakeEffectAtOnceAndNewConnectionsNextTime) {
    qvRTB::SignalVoid signal;
    std::string log;
    qvRTB::Connection self, later;
    self = signal.connect([&] {
        log += "s";
        self.disconnect();
        later.disconnect();
        signal.connect([&] { log += "n"; });
    });
    later = signal.connect([&] { log += "l"; });
    signal.send();
    signal.send();
    EXPECT_EQ(log, "sn");
    EXPECT_FALSE(self.connected());
    EXPECT_EQ(signal.numConnections(), 1u);
}

TEST(SignalDelivery, HandlesShareTheirConnectionAndOutliveTheSignal) {
    EXPECT_FALSE(qvRTB::Connection().connected());
    auto signal = std::make_unique<qvRTB::Signal<int>>();
    int calls = 0;
    qvRTB::Connection original = signal->connect([&](int k) { calls += k; });
    qvRTB::Connection copy = original;
    copy.disconnect();
    signal->send(1);
    EXPECT_FALSE(original.connected());
    EXPECT_EQ(calls, 0);

    copy = signal->connect([&](int k) { calls += k; });
    signal.reset();
    EXPECT_FALSE(copy.connected());
    copy.disconnect(); // harmless once the signal is gone
}
