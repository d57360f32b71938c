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
// platform strings must not depend on the process locale.
namespace {

// The bytes that may follow a lead byte as its first continuation. Narrowing the range here is
// what refuses overlong forms (E0, F0), UTF-16 surrogates (ED) and code points above U+10FFFF
// (F4); every later continuation byte is 80..BF.
struct LeadByte {
    int continuations; // -1: the byte cannot start a character
    unsigned char firstLow, firstHigh;
};

LeadByte classify(unsigned char b) {
    if (b < 0x80)
        return {0, 0, 0};
    if (b < 0xC2) // continuation bytes, and C0/C1 which only start overlong two-byte forms
        return {-1, 0, 0};
    if (b < 0xE0)
        return {1, 0x80, 0xBF};
    if (b == 0xE0)
        return {2, 0xA0, 0xBF};
    if (b == 0xED)
        return {2, 0x80, 0x9F};
    if (b < 0xF0)
        return {2, 0x80, 0xBF};
    if (b == 0xF0)
        return {3, 0x90, 0xBF};
    if (b < 0xF4)
        return {3, 0x80, 0xBF};
    if (b == 0xF4)
        return {3, 0x80, 0x8F};
    return {-1, 0, 0};
}

void appendCodePoint(IString& out, char32_t c) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (c >= 0x10000) {
            c -= 0x10000;
            out.push_back(static_cast<wchar_t>(0xD800 + (c >> 10)));
            out.push_back(static_cast<wchar_t>(0xDC00 + (c & 0x3FF)));
            return;
        }
    }
    out.push_back(static_cast<wchar_t>(c));
}

} // namespace

IString CString::toWide() const {
    constexpr char32_t replacement = 0xFFFD;
    IString out;
    const auto* p = reinterpret_cast<const unsigned char*>(data());
    const auto* end = p + size();
    while (p < end) {
        const LeadByte lead = classify(*p);
        if (lead.continuations < 0) {
            out.push_back(static_cast<wchar_t>(replacement));
            ++p;
            continue;
        }
        char32_t c = lead.continuations == 0 ? *p : (*p & (0x3F >> lead.continuations));
        const auto* q = p + 1;
        bool complete = true;
        for (int i = 0; i < lead.continuations; ++i, ++q) {
            const unsigned char low = i == 0 ? lead.firstLow : 0x80;
            const unsigned char high = i == 0 ? lead.firstHigh : 0xBF;
            if (q >= end || *q < low || *q > high) {
                complete = false;
                break;
            }
            c = (c << 6) | (*q & 0x3F);
        }
        // An ill-formed sequence is replaced as a whole up to the byte that broke it, and that
        // byte is read again as a possible lead: one U+FFFD per maximal ill-formed prefix, so
        // a bad byte never swallows the good character after it.
        appendCodePoint(out, complete ? c : replacement);
        p = q;
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
