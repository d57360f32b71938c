// The remote tier where this build has no Redis client: configuring one is an error that the
// server logs, and the cache goes on as a local one.
#include "programs/qvcached/RemoteTier.h"

namespace qvcached {

std::unique_ptr<RemoteTier> makeRemoteTier(const RemoteConfig& config,
                                           std::function<void(const std::string&)>,
                                           qvUtil::Error& error) {
    error = qvUtil::Error(1,
                          "remote tier %s configured, but this qvcached was built without one "
                          "(hiredis was not found)",
                          config.url.c_str());
    return nullptr;
}

} // namespace qvcached
