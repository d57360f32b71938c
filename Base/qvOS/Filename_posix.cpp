#include "Base/qvOS/Filename.h"

namespace qvOS {

char Filename::separator() noexcept {
    return '/';
}

bool Filename::isSeparator(char c) noexcept {
    return c == '/';
}

bool Filename::hasDrives() noexcept {
    return false;
}

bool Filename::isAbsolute(const char* path) noexcept {
    return path && path[0] == '/';
}

int Filename::currentDrive() noexcept {
    return 0;
}

} // namespace qvOS
