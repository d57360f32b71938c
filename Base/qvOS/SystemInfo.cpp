#include "Base/qvOS/SystemInfo.h"

#include <filesystem>

#include "Base/qvOS/Filename.h"
#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

qvString::CString tempDirectory() {
    std::error_code ec;
    qvString::CString dir = detail::fromPath(std::filesystem::temp_directory_path(ec));
    if (ec || dir.empty())
        dir = Filename::hasDrives() ? "C:\\Windows\\Temp" : "/tmp";
    // "/" alone keeps its separator; anything longer loses the trailing one.
    while (dir.size() > 1 && Filename::isSeparator(dir.back()) &&
           !(dir.size() == 3 && dir[1] == ':'))
        dir.pop_back();
    return dir;
}

} // namespace qvOS
