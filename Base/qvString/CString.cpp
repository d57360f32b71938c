#include "Base/qvString/CString.h"

#include <cstdio>

namespace qvString {

CString CString::format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    CString s = vformat(format, args);
    va_end(args);
    return s;
}

CString CString::vformat(const char* format, va_list args) {
    if (!format)
        return {};
    va_list copy;
    va_copy(copy, args);
    int n = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    CString s;
    if (n > 0) {
        s.resize(static_cast<size_t>(n));
        std::vsnprintf(s.data(), s.size() + 1, format, args);
    }
    return s;
}

// UTF-8 <-> UTF-32/UTF-16 by hand: the standard's codecvt facets are deprecated, and the
// platform strings must not depend on the process locale. Malformed bytes become U+FFFD.
IString CString::toWide() const {
    IString out;
    const auto* p = reinterpret_cast<const unsigned char*>(data());
    const auto* end = p + size();
    while (p < end) {
        char32_t c = *p++;
        int extra = c < 0x80           ? 0
                    : (c >> 5) == 0x6  ? 1
                    : (c >> 4) == 0xE  ? 2
                    : (c >> 3) == 0x1E ? 3
                                       : -1;
        if (extra < 0) {
            out.push_back(static_cast<wchar_t>(0xFFFD));
            continue;
        }
        c &= extra == 0 ? 0x7F : (0x3F >> extra);
        bool bad = false;
        for (int i = 0; i < extra; ++i) {
            if (p >= end || (*p >> 6) != 0x2) {
                bad = true;
                break;
            }
            c = (c << 6) | (*p++ & 0x3F);
        }
        if (bad) {
            out.push_back(static_cast<wchar_t>(0xFFFD));
            continue;
        }
        if constexpr (sizeof(wchar_t) == 2) {
            if (c >= 0x10000) {
                c -= 0x10000;
                out.push_back(static_cast<wchar_t>(0xD800 + (c >> 10)));
                out.push_back(static_cast<wchar_t>(0xDC00 + (c & 0x3FF)));
                continue;
            }
        }
        out.push_back(static_cast<wchar_t>(c));
    }
    return out;
}

CString IString::toUtf8() const {
    CString out;
    for (size_t i = 0; i < size(); ++i) {
        char32_t c = static_cast<char32_t>((*this)[i]);
        if constexpr (sizeof(wchar_t) == 2) {
            if (c >= 0xD800 && c < 0xDC00 && i + 1 < size()) {
                char32_t lo = static_cast<char32_t>((*this)[i + 1]);
                if (lo >= 0xDC00 && lo < 0xE000) {
                    c = 0x10000 + ((c - 0xD800) << 10) + (lo - 0xDC00);
                    ++i;
                }
            }
        }
        if (c < 0x80) {
            out.push_back(static_cast<char>(c));
        } else if (c < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (c >> 6)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        } else if (c < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (c >> 12)));
            out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (c >> 18)));
            out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        }
    }
    return out;
}

} // namespace qvString
