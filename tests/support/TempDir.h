// A fresh directory under the system's temporary directory for one test, removed with all it
// holds when the test ends.
#ifndef OBRIX_TESTS_SUPPORT_TEMPDIR_H
#define OBRIX_TESTS_SUPPORT_TEMPDIR_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "Base/qvOS/Filename.h"
#include "Base/qvOS/SystemInfo.h"
#include "Base/qvOS/Uuid.h"

namespace obrixtest {

class TempDir {
public:
    TempDir()
        : path_(qvOS::Filename::join(qvOS::tempDirectory(),
                                     "obrix-test-" + qvOS::Uuid().asString())) {
        qvOS::Filename::makeDir(path_);
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(fsPath(path_), ignored);
    }

    /// A UTF-8 name as a std::filesystem path (wide on Windows, so non-ASCII names survive).
    static std::filesystem::path fsPath(const qvString::CString& s) {
#ifdef _WIN32
        return std::filesystem::path(static_cast<const std::wstring&>(s.toWide()));
#else
        return std::filesystem::path(static_cast<const std::string&>(s));
#endif
    }
    /// Writes text to the file at path (UTF-8 name), replacing it.
    static void write(const qvString::CString& path, const std::string& text) {
        std::ofstream(fsPath(path), std::ios::binary) << text;
    }
    /// The whole content of the file at path; "" when it cannot be read.
    static std::string read(const qvString::CString& path) {
        std::ifstream in(fsPath(path), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const qvString::CString& path() const {
        return path_;
    }
    /// path() joined with name.
    qvString::CString operator/(const qvString::CString& name) const {
        return qvOS::Filename::join(path_, name);
    }

private:
    qvString::CString path_;
};

} // namespace obrixtest

#endif
