// One request and its reply over a loopback connection, the shape of every file-cache
// exchange: through qvTCP on both ends, and through a raw pair of POSIX sockets (TCP_NODELAY,
// plain send and recv) doing the same, in the same run. The echoing end runs on a thread of
// its own. Each exchange is timed too; p50, p99 and the worst exchange come out as counters,
// so a stall (such as a 40 ms delayed acknowledgement) shows even when the mean hides it.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Base/qvTCP/Socket.h"

namespace {

constexpr int Exchanges = 100000;

using Clock = std::chrono::steady_clock;

// Times every exchange of the loop and reports the distribution as counters (microseconds).
class ExchangeTimes {
public:
    explicit ExchangeTimes(benchmark::State& state) : state_(state) {
        times_.reserve(static_cast<std::size_t>(state.max_iterations));
    }
    template <class Exchange>
    void run(Exchange exchange) {
        for (auto _ : state_) {
            auto start = Clock::now();
            if (!exchange()) {
                state_.SkipWithError("exchange failed");
                break;
            }
            times_.push_back(
                std::chrono::duration<double, std::micro>(Clock::now() - start).count());
        }
        if (times_.empty())
            return;
        std::sort(times_.begin(), times_.end());
        auto at = [this](double q) {
            return times_[static_cast<std::size_t>(q * (times_.size() - 1))];
        };
        state_.counters["p50_us"] = at(0.50);
        state_.counters["p99_us"] = at(0.99);
        state_.counters["max_us"] = times_.back();
    }

private:
    benchmark::State& state_;
    std::vector<double> times_;
};

// --- qvTCP on both ends --------------------------------------------------------------------

struct QvTCPPair {
    QvTCPPair() : client(qvTCP::Address::loopback(0)) {
        server.setLoopbackOnly();
        if (server.listen().isError())
            return;
        client = qvTCP::ClientSocket(qvTCP::Address::loopback(server.getPort()));
        std::thread connector([this] { connected = client.connect(5.0).isOk(); });
        server.accept(5.0, echo);
        connector.join();
    }
    bool ok() const { return connected && echo; }

    qvTCP::Server server;
    qvTCP::ClientSocket client;
    std::unique_ptr<qvTCP::Socket> echo;
    bool connected = false;
};

void BM_QvTCPRoundTrip4Bytes(benchmark::State& state) {
    QvTCPPair pair;
    if (!pair.ok())
        return state.SkipWithError("no loopback connection");
    std::thread echo([&pair] {
        std::int32_t value;
        while (pair.echo->read(&value, 4).isOk() && pair.echo->write(&value, 4).isOk()) {
        }
    });
    std::int32_t request = 7, reply = 0;
    ExchangeTimes(state).run([&] {
        return pair.client.write(&request, 4).isOk() && pair.client.read(&reply, 4).isOk();
    });
    pair.client.close();
    echo.join();
}
BENCHMARK(BM_QvTCPRoundTrip4Bytes)->Iterations(Exchanges)->UseRealTime();

// The same with string frames (4-byte length and 4 bytes each way), as the cache's keys travel.
void BM_QvTCPRoundTripFrame(benchmark::State& state) {
    QvTCPPair pair;
    if (!pair.ok())
        return state.SkipWithError("no loopback connection");
    std::thread echo([&pair] {
        qvString::CString text;
        while (pair.echo->read(text).isOk() && pair.echo->write(text).isOk()) {
        }
    });
    const qvString::CString request = "key1";
    qvString::CString reply;
    ExchangeTimes(state).run(
        [&] { return pair.client.write(request).isOk() && pair.client.read(reply).isOk(); });
    pair.client.close();
    echo.join();
}
BENCHMARK(BM_QvTCPRoundTripFrame)->Iterations(Exchanges)->UseRealTime();

// --- the raw pair --------------------------------------------------------------------------

bool sendAll(int fd, const void* data, std::size_t n) {
    auto* p = static_cast<const char*>(data);
    while (n > 0) {
        ssize_t k = ::send(fd, p, n, MSG_NOSIGNAL);
        if (k <= 0)
            return false;
        p += k;
        n -= static_cast<std::size_t>(k);
    }
    return true;
}

bool recvAll(int fd, void* data, std::size_t n) {
    auto* p = static_cast<char*>(data);
    while (n > 0) {
        ssize_t k = ::recv(fd, p, n, 0);
        if (k <= 0)
            return false;
        p += k;
        n -= static_cast<std::size_t>(k);
    }
    return true;
}

void noDelay(int fd) {
    int on = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

void BM_RawSocketRoundTrip4Bytes(benchmark::State& state) {
    int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(listener, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        ::listen(listener, 1) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        ::close(listener);
        return state.SkipWithError("no listening socket");
    }
    int client = ::socket(AF_INET, SOCK_STREAM, 0);
    if (::connect(client, reinterpret_cast<sockaddr*>(&address), length) != 0) {
        ::close(client);
        ::close(listener);
        return state.SkipWithError("no loopback connection");
    }
    int served = ::accept(listener, nullptr, nullptr);
    ::close(listener);
    noDelay(client);
    noDelay(served);
    std::thread echo([served] {
        std::int32_t value;
        while (recvAll(served, &value, 4) && sendAll(served, &value, 4)) {
        }
    });
    std::int32_t request = 7, reply = 0;
    ExchangeTimes(state).run(
        [&] { return sendAll(client, &request, 4) && recvAll(client, &reply, 4); });
    ::shutdown(client, SHUT_RDWR);
    echo.join();
    ::close(client);
    ::close(served);
}
BENCHMARK(BM_RawSocketRoundTrip4Bytes)->Iterations(Exchanges)->UseRealTime();

} // namespace
