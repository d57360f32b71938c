#include "Base/qvOS/Filename.h"

#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

using qvString::CString;

CString Filename::join(const CString& dir, const CString& name) {
    if (dir.empty())
        return name;
    if (name.empty())
        return dir;
    CString out = dir;
    bool dirEnds = isSeparator(dir.back());
    bool nameStarts = isSeparator(name.front());
    if (dirEnds && nameStarts)
        out.append(name, 1);
    else {
        if (!dirEnds && !nameStarts)
            out.push_back(separator());
        out += name;
    }
    return out;
}

// Length of the prefix that a path's directory part always keeps: "C:" on Windows.
static std::size_t drivePrefix(const CString& path) {
    if (Filename::hasDrives() && path.size() >= 2 && path[1] == ':')
        return 2;
    return 0;
}

static std::size_t lastSeparator(const CString& path) {
    for (std::size_t i = path.size(); i > drivePrefix(path); --i)
        if (Filename::isSeparator(path[i - 1]))
            return i - 1;
    return CString::npos;
}

CString Filename::directory(const CString& path) {
    std::size_t at = lastSeparator(path);
    std::size_t drive = drivePrefix(path);
    if (at == CString::npos)
        return path.substr(0, drive);
    // The root separator stays: the directory of "/x" is "/", not "".
    if (at == drive)
        return path.substr(0, drive + 1);
    return path.substr(0, at);
}

CString Filename::base(const CString& path) {
    std::size_t at = lastSeparator(path);
    if (at == CString::npos)
        return path.substr(drivePrefix(path));
    return path.substr(at + 1);
}

qvUtil::Error Filename::makeDir(const CString& path) {
    const char* what = "Cannot create directory";
    if (auto e = detail::checkPath(what, path); e.isError())
        return e;
    std::error_code ec;
    std::filesystem::path p = detail::toPath(path);
    std::filesystem::create_directories(p, ec);
    if (ec) {
        // Another process creating the same directory at the same moment is success too.
        std::error_code ignored;
        if (std::filesystem::is_directory(p, ignored))
            return {};
        return detail::fromErrorCode(what, path, ec);
    }
    if (!std::filesystem::is_directory(p, ec))
        return detail::pathError(OSError::AlreadyExists, what, path,
                                 "a file of that name is in the way");
    return {};
}

} // namespace qvOS
