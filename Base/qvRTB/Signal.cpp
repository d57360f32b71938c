#include "Base/qvRTB/Signal.h"

#include <new>

#include <boost/signals2/signal.hpp>

namespace qvRTB {
namespace {

// Slots hold std::function rather than boost::function: the latter draws false
// "used uninitialized" warnings from optimising compilers.
using Engine =
    boost::signals2::signal<void(const void*), boost::signals2::optional_last_value<void>, int,
                            std::less<int>, detail::SignalCore::Slot,
                            std::function<void(const boost::signals2::connection&, const void*)>>;
using EngineConnection = boost::signals2::connection;

// The header reserves room for the engine's objects without naming them; a Boost whose
// objects outgrow that room must fail here, not corrupt memory.
static_assert(sizeof(Engine) <= 3 * sizeof(void*) && alignof(Engine) <= alignof(void*));
static_assert(sizeof(EngineConnection) <= 2 * sizeof(void*) &&
              alignof(EngineConnection) <= alignof(void*));

template <class T>
T& in(unsigned char* storage) {
    return *std::launder(reinterpret_cast<T*>(storage));
}
template <class T>
const T& in(const unsigned char* storage) {
    return *std::launder(reinterpret_cast<const T*>(storage));
}

// Connections track only whether the token is alive; what it points at never matters.
std::shared_ptr<void> newToken() {
    return std::make_shared<char>(0);
}

} // namespace

Connection::Connection() noexcept {
    new (body_) EngineConnection();
}

Connection::Connection(const Connection& other) noexcept {
    new (body_) EngineConnection(in<EngineConnection>(other.body_));
}

Connection& Connection::operator=(const Connection& other) noexcept {
    in<EngineConnection>(body_) = in<EngineConnection>(other.body_);
    return *this;
}

Connection::~Connection() {
    in<EngineConnection>(body_).~EngineConnection();
}

void Connection::disconnect() const {
    in<EngineConnection>(body_).disconnect();
}

bool Connection::connected() const {
    return in<EngineConnection>(body_).connected();
}

SignalClient::SignalClient() : alive_(newToken()) {
}

SignalClient::SignalClient(const SignalClient&) : alive_(newToken()) {
}

SignalClient& SignalClient::operator=(const SignalClient&) {
    return *this;
}

SignalClient::~SignalClient() = default;

void SignalClient::disconnectAll() {
    alive_ = newToken();
}

namespace detail {

SignalCore::SignalCore() {
    new (engine_) Engine();
}

SignalCore::~SignalCore() {
    in<Engine>(engine_).~Engine();
}

Connection SignalCore::connect(Slot slot) {
    Connection handle;
    in<EngineConnection>(handle.body_) = in<Engine>(engine_).connect(std::move(slot));
    return handle;
}

Connection SignalCore::connect(Slot slot, const std::weak_ptr<void>& tracked) {
    Engine::slot_type tracking(std::move(slot));
    tracking.track_foreign(tracked);
    Connection handle;
    in<EngineConnection>(handle.body_) = in<Engine>(engine_).connect(tracking);
    return handle;
}

void SignalCore::send(const void* arguments) const {
    in<Engine>(engine_)(arguments);
}

std::size_t SignalCore::numConnections() const {
    return in<Engine>(engine_).num_slots();
}

void SignalCore::disconnectAll() {
    in<Engine>(engine_).disconnect_all_slots();
}

} // namespace detail

} // namespace qvRTB
