#include "Base/qvOS/Env.h"

#include <cstdlib>
#include <cstring>

#include <windows.h>

#include "Base/qvOS/Filename.h"
#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

// The wide process environment is the one truth on Windows: the 8-bit CRT copy would mangle
// non-ASCII text through the ANSI code page.
bool GetEnv(const char* name, qvString::CString& value) {
    if (!detail::isValidEnvName(name))
        return false;
    qvString::IString wideName = qvString::CString(name).toWide();
    std::wstring buffer(256, L'\0');
    for (;;) {
        SetLastError(0);
        DWORD n = GetEnvironmentVariableW(wideName.c_str(), buffer.data(),
                                          static_cast<DWORD>(buffer.size()));
        if (n == 0) {
            // 0 is both "unset" and "set to the empty string"; only the former sets an error.
            if (GetLastError() == ERROR_ENVVAR_NOT_FOUND)
                return false;
            value.clear();
            return true;
        }
        if (n < buffer.size()) {
            buffer.resize(n);
            value = qvString::IString(buffer).toUtf8();
            return true;
        }
        buffer.resize(n); // n is the size needed, with its terminator
    }
}

qvUtil::Error SetEnv(const char* name, const char* value) {
    if (!detail::isValidEnvName(name))
        return {OSError::InvalidArgument,
                "Cannot set environment variable \"%s\": a name must be non-empty and hold no '='",
                name ? name : ""};
    qvString::IString wideName = qvString::CString(name).toWide();
    qvString::IString wideValue = qvString::CString(value).toWide();
    // The C runtime keeps its own copy for getenv and passes each change on to the process
    // environment; it cannot hold an empty value (setting "" removes the variable), so the
    // process environment is set last and holds the exact value.
    _wputenv_s(wideName.c_str(), value && value[0] ? wideValue.c_str() : L"");
    if (!SetEnvironmentVariableW(wideName.c_str(), value ? wideValue.c_str() : nullptr))
        return detail::lastSystemError("Cannot set environment variable", name);
    return {};
}

bool userHomeDirectory(const char* user, qvString::CString& home) {
    qvString::CString profile;
    if (!GetEnv("USERPROFILE", profile) || profile.empty())
        return false;
    qvString::CString self;
    if (!user || !user[0] || (GetEnv("USERNAME", self) && _stricmp(self.c_str(), user) == 0)) {
        home = profile;
        return true;
    }
    // A name that walks elsewhere ("..", "a\\b") names no profile.
    if (std::strcmp(user, ".") == 0 || std::strcmp(user, "..") == 0 || std::strpbrk(user, "\\/:"))
        return false;
    qvString::CString parent = Filename::directory(profile);
    if (parent.empty())
        return false;
    qvString::CString other = Filename::join(parent, user);
    DWORD attributes = GetFileAttributesW(other.toWide().c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_DIRECTORY))
        return false;
    home = other;
    return true;
}

} // namespace qvOS
