// The platform's string types: qvString::CString holds 8-bit text (UTF-8 by convention) and
// qvString::IString wide text. Both are std::basic_string with a few conveniences, so they
// pass wherever the standard strings do.
#ifndef BASE_QVSTRING_CSTRING_H
#define BASE_QVSTRING_CSTRING_H

#include <cstdarg>
#include <string>

#include "Base/BaseExport.h"

namespace qvString {

class IString;

/// 8-bit string.
class BASE_API CString : public std::string {
public:
    using std::string::string;
    CString() = default;
    CString(const std::string& s) : std::string(s) {}
    CString(std::string&& s) noexcept : std::string(std::move(s)) {}
    /// A null pointer gives the empty string (std::string would be undefined).
    CString(const char* s) : std::string(s ? s : "") {}

    /// printf-style construction.
    static CString format(const char* format, ...) BASE_PRINTF(1, 2);
    /// format with an argument list.
    static CString vformat(const char* format, va_list args);

    /// The UTF-8 text as a wide string.
    IString toWide() const;
};

/// Wide string.
class BASE_API IString : public std::wstring {
public:
    using std::wstring::wstring;
    IString() = default;
    IString(const std::wstring& s) : std::wstring(s) {}
    IString(std::wstring&& s) noexcept : std::wstring(std::move(s)) {}
    /// A null pointer gives the empty string.
    IString(const wchar_t* s) : std::wstring(s ? s : L"") {}

    /// The text as UTF-8.
    CString toUtf8() const;
};

} // namespace qvString

#endif
