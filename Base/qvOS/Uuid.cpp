#include "Base/qvOS/Uuid.h"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace qvOS {

Uuid::Uuid() {
    // One generator per thread: it holds a handle on the system's random source, which is
    // costly to open for every identifier, and it is not safe to share between threads.
    thread_local boost::uuids::random_generator generator;
    boost::uuids::uuid u = generator();
    std::memcpy(bytes_, u.data, sizeof bytes_);
}

qvString::CString Uuid::asString() const {
    boost::uuids::uuid u;
    std::memcpy(u.data, bytes_, sizeof bytes_);
    return boost::uuids::to_string(u);
}

} // namespace qvOS
