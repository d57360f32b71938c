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
// The connections are kept by Boost.Signals2, whose signals guard their own connection lists;
// sending is still meant for one thread at a time.
#ifndef BASE_QVRTB_SIGNAL_H
#define BASE_QVRTB_SIGNAL_H

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>

#include <boost/signals2/signal.hpp>

#include "Base/BaseExport.h"

namespace qvRTB {

/// A handle on one connection: `disconnect()` cuts it, `connected()` tells whether it still
/// stands. Dropping the handle leaves the connection in place.
using Connection = boost::signals2::connection;

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

/// A signal carrying `Args...` to its connected functions, which are called in the order of
/// connection. Signals are neither copied nor moved: connections refer to them.
template <class... Args>
class Signal {
    // Slots hold std::function rather than boost::function: the latter draws false
    // "used uninitialized" warnings from optimising compilers into every caller's build.
    using Impl =
        boost::signals2::signal<void(Args...), boost::signals2::optional_last_value<void>, int,
                                std::less<int>, std::function<void(Args...)>,
                                std::function<void(const boost::signals2::connection&, Args...)>>;

public:
    Signal() = default;
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    /// Connects `function` for as long as the signal lives or until the connection is cut.
    template <class F>
    Connection connect(F&& function) {
        return impl_.connect(std::forward<F>(function));
    }

    /// Connects `function` for as long as `client` lives: when it dies, the connection is cut
    /// before any further send could reach it.
    template <class F>
    Connection connect(const SignalClient& client, F&& function) {
        typename Impl::slot_type slot(std::forward<F>(function));
        slot.track_foreign(std::weak_ptr<void>(client.lifetime()));
        return impl_.connect(slot);
    }

    /// Calls every connected function with `args`, in the order of connection.
    void send(Args... args) const { impl_(args...); }
    /// Same as send.
    void operator()(Args... args) const { impl_(args...); }

    /// The number of connections still standing (those whose client died are not counted).
    std::size_t numConnections() const { return impl_.num_slots(); }
    /// Cuts every connection.
    void disconnectAll() { impl_.disconnect_all_slots(); }

private:
    // Sending is logically const: it changes nothing the signal's owner can see.
    mutable Impl impl_;
};

/// A signal without arguments.
using SignalVoid = Signal<>;

} // namespace qvRTB

#endif
