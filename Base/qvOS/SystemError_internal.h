// Shared by the qvOS bodies: building qvUtil::Error values from the system's failures, checking
// paths before they reach the system, and converting between UTF-8 names and
// std::filesystem paths (which on Windows must go through wide text, not the ANSI code page).
#ifndef BASE_QVOS_SYSTEMERROR_INTERNAL_H
#define BASE_QVOS_SYSTEMERROR_INTERNAL_H

#include <filesystem>
#include <system_error>

#include "Base/qvOS/OSError.h"
#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"

namespace qvOS::detail {

/// Longest path accepted before any system call: the longest a wide Windows path can be; the
/// systems report anything shorter but still too long themselves.
constexpr std::size_t MaxPathBytes = 32767;

/// InvalidArgument for an empty path, one with an embedded NUL or one longer than MaxPathBytes;
/// success otherwise. what names the operation ("Cannot copy").
qvUtil::Error checkPath(const char* what, const qvString::CString& path);

/// "<what> "<path>": <text>" with the OSError code that code maps to. Works for errno values
/// (generic and POSIX system category) and, on Windows, Win32 codes in the system category.
qvUtil::Error fromErrorCode(const char* what, const qvString::CString& path, std::error_code code);

/// The system's last failure (errno on POSIX, GetLastError on Windows) with the system's own
/// text (strerror / FormatMessage) and its OSError code.
qvUtil::Error lastSystemError(const char* what, const qvString::CString& path);
/// The same for a given errno value (POSIX) or GetLastError value (Windows).
qvUtil::Error systemError(long code, const char* what, const qvString::CString& path);

/// An error of our own making: "<what> "<path>": <reason>".
qvUtil::Error pathError(int code, const char* what, const qvString::CString& path,
                        const char* reason);

inline std::filesystem::path toPath(const qvString::CString& s) {
#ifdef _WIN32
    return std::filesystem::path(static_cast<const std::wstring&>(s.toWide()));
#else
    return std::filesystem::path(static_cast<const std::string&>(s));
#endif
}

inline qvString::CString fromPath(const std::filesystem::path& p) {
#ifdef _WIN32
    return qvString::IString(p.wstring()).toUtf8();
#else
    return qvString::CString(p.string());
#endif
}

#ifdef _WIN32
/// UTF-8 to the process's ANSI code page, for the system's 8-bit ("A") calls; characters the
/// code page lacks become '?'. Unchanged when the code page is UTF-8 (an application manifest
/// can ask for that, and then every name passes intact).
std::string toAnsi(const qvString::CString& utf8);
/// The reverse of toAnsi.
qvString::CString fromAnsi(const char* text);
#endif

/// True when name can name an environment variable: non-null, non-empty, without '='.
bool isValidEnvName(const char* name) noexcept;

/// Forces the bytes of the file at path to the disk, so that a rename that follows can never
/// expose a name whose content a crash lost.
qvUtil::Error syncFile(const qvString::CString& path);

/// Renames from to to (both files of one file system). overwrite false: an existing target is
/// an AlreadyExists error, decided by the system atomically where it can. crossDevice is set
/// when the two lie on different file systems (then the caller copies).
qvUtil::Error renameFile(const qvString::CString& from, const qvString::CString& to, bool overwrite,
                         bool& crossDevice);

} // namespace qvOS::detail

#endif
