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
    /// Copies a standard string; with the move below, std::string results convert without a cast.
    CString(const std::string& s) : std::string(s) {}
    /// Takes over a standard string's buffer.
    CString(std::string&& s) noexcept : std::string(std::move(s)) {}
    /// A null pointer gives the empty string (std::string would be undefined).
    CString(const char* s) : std::string(s ? s : "") {}

    /// printf-style construction.
    static CString format(const char* format, ...) BASE_PRINTF(1, 2);
    /// format with an argument list.
    static CString vformat(const char* format, va_list args);

    /// The UTF-8 text as a wide string (UTF-32 where wchar_t has 32 bits, UTF-16 with surrogate
    /// pairs where it has 16, as on Windows). Never fails: each ill-formed sequence is replaced
    /// by one U+FFFD, up to the byte that made it ill-formed, which is then read as the start of
    /// the next character. Ill-formed are: bytes C0, C1, F5..FF and stray continuation bytes;
    /// overlong forms (C0 80, E0 80 AF); UTF-16 surrogates (ED A0 80); code points above
    /// U+10FFFF (F4 90 80 80); and sequences cut short by the end or by a non-continuation
    /// byte. So "C0 80" never becomes NUL and "E0 80 AF" never becomes '/'.
    IString toWide() const;
};

/// Wide string.
class BASE_API IString : public std::wstring {
public:
    using std::wstring::wstring;
    IString() = default;
    /// Copies a standard wide string.
    IString(const std::wstring& s) : std::wstring(s) {}
    /// Takes over a standard wide string's buffer.
    IString(std::wstring&& s) noexcept : std::wstring(std::move(s)) {}
    /// A null pointer gives the empty string.
    IString(const wchar_t* s) : std::wstring(s ? s : L"") {}

    /// The text as UTF-8.
    CString toUtf8() const;
};

} // namespace qvString

#endif
