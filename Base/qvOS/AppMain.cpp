#include "Base/qvOS/AppMain.h"

#include <filesystem>
#include <vector>

#include "Base/qvOS/Env.h"
#include "Base/qvOS/Filename.h"
#include "Base/qvOS/SystemError_internal.h"

namespace qvOS {

using qvString::CString;

CString AppMain::getBinaryPath(const char* name) {
    if (!name || !name[0])
        return {};
    CString file = name;
    if (Filename::hasDrives()) {
        CString tail = file.size() >= 4 ? file.substr(file.size() - 4) : CString();
        for (char& c : tail)
            c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
        if (tail != ".exe")
            file += ".exe";
    }

    std::vector<CString> dirs;
    CString overrideDir;
    if (GetEnv("OBRIX_HELPER_DIR", overrideDir) && !overrideDir.empty())
        dirs.push_back(overrideDir);
    CString exe = getExecutablePath();
    CString exeDir = exe.empty() ? CString() : Filename::directory(exe);
    if (!exeDir.empty())
        dirs.push_back(exeDir);
    CString lib = getLibraryPath();
    if (!lib.empty()) {
        CString libDir = Filename::directory(lib);
        dirs.push_back(libDir);
        // Where the install rules put programs relative to where they put libBase
        // (<prefix>/bin beside <prefix>/lib, or beside <prefix>/lib/<multiarch>).
        std::error_code ec;
        auto installed = std::filesystem::weakly_canonical(
            detail::toPath(Filename::join(libDir, BASE_LIB_TO_BIN_DIR)), ec);
        if (!ec)
            dirs.push_back(detail::fromPath(installed));
    }

    for (const CString& dir : dirs) {
        CString candidate = Filename::join(dir, file);
        std::error_code ec;
        if (std::filesystem::is_regular_file(detail::toPath(candidate), ec))
            return candidate;
    }
    return exeDir.empty() ? file : Filename::join(exeDir, file);
}

} // namespace qvOS
