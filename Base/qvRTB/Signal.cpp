#include "Base/qvRTB/Signal.h"

namespace qvRTB {
namespace {

// Connections track only whether the token is alive; what it points at never matters.
std::shared_ptr<void> newToken() {
    return std::make_shared<char>(0);
}

} // namespace

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

} // namespace qvRTB
