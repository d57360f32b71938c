#include "Base/qvOS/Filename.h"

#include <cctype>

#include <direct.h>

namespace qvOS {

char Filename::separator() noexcept {
    return '\\';
}

bool Filename::isSeparator(char c) noexcept {
    return c == '/' || c == '\\';
}

bool Filename::hasDrives() noexcept {
    return true;
}

bool Filename::isAbsolute(const char* path) noexcept {
    if (!path || !path[0])
        return false;
    // "\\server\share" and "\dir" (rooted on the current drive) both start with a separator.
    if (isSeparator(path[0]))
        return true;
    return std::isalpha(static_cast<unsigned char>(path[0])) && path[1] == ':' &&
           isSeparator(path[2]);
}

int Filename::currentDrive() noexcept {
    return _getdrive();
}

} // namespace qvOS
