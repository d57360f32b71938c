#include "Base/qvOS/Env.h"

#include <cstring>

#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

namespace detail {

// '=' separates name from value in the environment block of both systems, so a name holding
// one could never be read back.
bool isValidEnvName(const char* name) noexcept {
    return name && name[0] && !std::strchr(name, '=');
}

} // namespace detail

bool GetEnv(const wchar_t* name, qvString::IString& value) {
    if (!name || !name[0])
        return false;
    qvString::CString narrow;
    if (!GetEnv(qvString::IString(name).toUtf8().c_str(), narrow))
        return false;
    value = narrow.toWide();
    return true;
}

} // namespace qvOS
