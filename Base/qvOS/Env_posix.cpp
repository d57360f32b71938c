#include "Base/qvOS/Env.h"

#include <cerrno>
#include <cstdlib>
#include <vector>

#include <pwd.h>
#include <unistd.h>

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

bool userHomeDirectory(const char* user, qvString::CString& home) {
    bool self = !user || !user[0];
    if (self) {
        const char* h = std::getenv("HOME");
        if (h && h[0]) {
            home = h;
            return true;
        }
    }
    long hint = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(hint > 0 ? static_cast<std::size_t>(hint) : 4096);
    for (;;) {
        passwd entry{};
        passwd* found = nullptr;
        int rc = self ? ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found)
                      : ::getpwnam_r(user, &entry, buffer.data(), buffer.size(), &found);
        if (rc == ERANGE && buffer.size() < (std::size_t{1} << 20)) {
            buffer.resize(buffer.size() * 2);
            continue;
        }
        if (rc != 0 || !found || !found->pw_dir || !found->pw_dir[0])
            return false;
        home = found->pw_dir;
        return true;
    }
}

} // namespace qvOS
