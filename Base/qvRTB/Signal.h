// Signals with connections that end when their receiver dies. A qvRTB::Signal<Args...> sends
// its arguments to every connected function; a function connected through a
// qvRTB::SignalClient is cut off automatically when that client is destroyed, so an object
// that embeds a SignalClient never receives a call after its death.
//
//     struct Viewer { qvRTB::SignalClient client; void refresh(); };
//     qvRTB::SignalVoid changed;
//     changed.connect(viewer.client, [&viewer] { viewer.refresh(); });
//     changed.send(); // calls viewer.refresh() while viewer lives, nothing afterwards
//
// The connections are kept by Boost.Signals2 inside libBase, whose signals guard their own
// connection lists; sending is still meant for one thread at a time. This header names no
// Boost type, so including it costs a caller's build nothing of Boost.
#ifndef BASE_QVRTB_SIGNAL_H
#define BASE_QVRTB_SIGNAL_H

#include <cstddef>
#include <functional>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

#include "Base/BaseExport.h"

namespace qvRTB {

namespace detail {
class SignalCore;
}

/// A handle on one connection: `disconnect()` cuts it, `connected()` tells whether it still
/// stands. Dropping the handle leaves the connection in place; copies are handles on the same
/// connection. A default-constructed handle refers to no connection.
class BASE_API Connection {
public:
    /// A handle on no connection.
    Connection() noexcept;
    ///@{
    /// Another handle on the same connection.
    Connection(const Connection& other) noexcept;
    Connection& operator=(const Connection& other) noexcept;
    ///@}
    /// Drops the handle; the connection stays.
    ~Connection();

    /// Cuts the connection: its function is not called by any later send, nor by the rest of
    /// a send under way. Nothing when it is already cut or the handle is empty.
    void disconnect() const;
    /// True while the connection stands: not cut, its signal alive and its client (if any)
    /// alive.
    bool connected() const;

private:
    friend class detail::SignalCore;
    // The engine's connection handle lives in place: handles are made by every connect and
    // copied freely, and a heap block apiece would cost more than the handle itself.
    alignas(void*) unsigned char body_[2 * sizeof(void*)];
};

/// Owns one connection and cuts it when it is destroyed or given another: for a receiver
/// that is no SignalClient but must not be called after its own death, such as a member of
/// the receiver. Moving hands the connection over; there are no copies, since a copy's death
/// would cut the connection under its twin.
class ScopedConnection {
public:
    /// Owns no connection.
    ScopedConnection() noexcept = default;
    /// Takes over `connection`.
    ScopedConnection(const Connection& connection) noexcept : connection_(connection) {}
    /// Takes over `other`'s connection; `other` then owns none.
    ScopedConnection(ScopedConnection&& other) noexcept : connection_(other.release()) {}
    /// Cuts the connection held so far, then takes over `other`'s.
    ScopedConnection& operator=(ScopedConnection&& other) {
        if (this != &other) {
            connection_.disconnect();
            connection_ = other.release();
        }
        return *this;
    }
    ScopedConnection(const ScopedConnection&) = delete;
    ScopedConnection& operator=(const ScopedConnection&) = delete;
    /// Cuts the connection.
    ~ScopedConnection() { connection_.disconnect(); }

    /// Gives the connection up without cutting it; this object then owns none.
    Connection release() noexcept { return std::exchange(connection_, Connection()); }
    /// Cuts the connection now.
    void disconnect() const { connection_.disconnect(); }
    /// True while the owned connection stands.
    bool connected() const { return connection_.connected(); }

private:
    Connection connection_;
};

/// The receiving side of connections. Functions connected through a client are cut off when
/// the client is destroyed or `disconnectAll()` is called. A copy of a client is a new client:
/// the original's connections stay with the original.
class BASE_API SignalClient {
public:
    SignalClient();
    /// A new client without connections: copying one never duplicates its connections.
    SignalClient(const SignalClient&);
    /// Keeps this client's own connections; nothing is taken over from `other`.
    SignalClient& operator=(const SignalClient& other);
    ~SignalClient();

    /// Cuts every connection made through this client so far; later ones are kept again.
    void disconnectAll();

    /// The token that connections made through this client track; it expires with the client.
    const std::shared_ptr<void>& lifetime() const noexcept { return alive_; }

private:
    std::shared_ptr<void> alive_;
};

namespace detail {

/// The argument-type-free engine under every Signal<Args...>: its slots take the address of
/// the sender's packed arguments and unpack them with the types they were connected for.
/// Only Signal<Args...> uses it; it is exported because the typed signals are templates.
class BASE_API SignalCore {
public:
    /// A connected function as the engine holds it: called with the address of the arguments.
    using Slot = std::function<void(const void*)>;

    SignalCore();
    SignalCore(const SignalCore&) = delete;
    SignalCore& operator=(const SignalCore&) = delete;
    ~SignalCore();

    /// Connects `slot` behind every earlier connection.
    Connection connect(Slot slot);
    /// Connects `slot` for as long as `tracked` has not expired.
    Connection connect(Slot slot, const std::weak_ptr<void>& tracked);
    /// Calls every standing slot with `arguments`, in the order of connection.
    void send(const void* arguments) const;
    /// The number of connections still standing.
    std::size_t numConnections() const;
    /// Cuts every connection.
    void disconnectAll();

private:
    // The engine lives in place (it is itself a handle on a shared block), so a signal costs
    // no heap block beyond the engine's own.
    alignas(void*) unsigned char engine_[3 * sizeof(void*)];
};

} // namespace detail

/// A signal carrying `Args...` to its connected functions, which are called in the order of
/// connection. A connection may be cut, or a new one made, from inside a connected function:
/// a cut one is not called again, a new one is first called by the next send. Each function
/// receives the arguments as a function taking `Args...` would: its own copy of every argument
/// passed by value. Signals are neither copied nor moved: connections refer to them.
template <class... Args>
class Signal {
public:
    Signal() = default;
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    /// Connects `function` for as long as the signal lives or until the connection is cut.
    template <class F>
    Connection connect(F&& function) {
        return core_.connect(unpacking(std::forward<F>(function)));
    }

    /// Connects `function` for as long as `client` lives: when it dies, the connection is cut
    /// before any further send could reach it.
    template <class F>
    Connection connect(const SignalClient& client, F&& function) {
        return core_.connect(unpacking(std::forward<F>(function)),
                             std::weak_ptr<void>(client.lifetime()));
    }

    /// Calls every connected function with `args`, in the order of connection.
    void send(Args... args) const {
        const Packed packed(args...);
        core_.send(&packed);
    }
    /// Same as send.
    void operator()(Args... args) const { send(args...); }

    /// The number of connections still standing (those whose client died are not counted).
    std::size_t numConnections() const { return core_.numConnections(); }
    /// Cuts every connection.
    void disconnectAll() { core_.disconnectAll(); }

private:
    using Packed = std::tuple<Args&...>;

    template <class F, std::size_t... I>
    static void call(F& function, [[maybe_unused]] const Packed& args, std::index_sequence<I...>) {
        // static_cast<Args> gives a by-value argument its own copy per function and passes a
        // reference on as it came.
        std::invoke(function, static_cast<Args>(std::get<I>(args))...);
    }

    template <class F>
    static detail::SignalCore::Slot unpacking(F&& function) {
        return
            [function = std::decay_t<F>(std::forward<F>(function))](const void* arguments) mutable {
                call(function, *static_cast<const Packed*>(arguments),
                     std::index_sequence_for<Args...>{});
            };
    }

    detail::SignalCore core_;
};

/// A signal without arguments.
using SignalVoid = Signal<>;

} // namespace qvRTB

#endif
