#include "Base/qvOS/Env.h"

#include <cerrno>
#include <cstdlib>

#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

bool GetEnv(const char* name, qvString::CString& value) {
    if (!detail::isValidEnvName(name))
        return false;
    const char* v = std::getenv(name);
    if (!v)
        return false;
    value = v;
    return true;
}

qvUtil::Error SetEnv(const char* name, const char* value) {
    if (!detail::isValidEnvName(name))
        return {OSError::InvalidArgument,
                "Cannot set environment variable \"%s\": a name must be non-empty and hold no '='",
                name ? name : ""};
    int rc = value ? ::setenv(name, value, 1) : ::unsetenv(name);
    if (rc != 0)
        return detail::lastSystemError("Cannot set environment variable", name);
    return {};
}

} // namespace qvOS
