#include "ObrixBase/util/vk_string.h"

#include <cstdlib>
#include <cstring>

namespace {

// The shared scratch buffer: grown to the longest string seen, never freed. Process-wide and
// unguarded like the rest of the C interface's state.
char* scratch = nullptr;
std::size_t scratchSize = 0;

// A buffer that holds `length` characters and the terminator, or null when it cannot grow.
char* scratchFor(std::size_t length) {
    if (length >= scratchSize) {
        char* grown = static_cast<char*>(std::malloc(length + 1));
        if (!grown)
            return nullptr;
        std::free(scratch);
        scratch = grown;
        scratchSize = length + 1;
    }
    return scratch;
}

// Copies `src` without `c` into `dst`; also correct in place (dst == src), since the write
// position never overtakes the read position.
void copyWithout(char* dst, const char* src, char c) {
    for (; *src; ++src)
        if (*src != c)
            *dst++ = *src;
    *dst = '\0';
}

} // namespace

extern "C" {

void VK_string_stripchar(char* s, char c) {
    if (!s)
        return;
    const std::size_t length = std::strlen(s);
    if (char* buffer = scratchFor(length)) {
        copyWithout(buffer, s, c);
        std::memcpy(s, buffer, std::strlen(buffer) + 1);
    } else {
        copyWithout(s, s, c);
    }
}

void VK_string_strcpy_stripchar(char* dst, const char* src, char c) {
    if (!dst)
        return;
    *dst = '\0';
    if (src)
        copyWithout(dst, src, c);
}

void VK_string_trailing_remove(char* s, char c) {
    if (!s)
        return;
    for (std::size_t length = std::strlen(s); length > 0 && s[length - 1] == c; --length)
        s[length - 1] = '\0';
}

void VK_string_leading_trailing_remove(char* s, char c) {
    if (!s || !*s)
        return;
    VK_string_trailing_remove(s, c);
    const char* start = s;
    while (*start && *start == c)
        ++start;
    const std::size_t length = std::strlen(start);
    if (char* buffer = scratchFor(length)) {
        std::memcpy(buffer, start, length + 1);
        std::memcpy(s, buffer, length + 1);
    } else {
        std::memmove(s, start, length + 1);
    }
}

void VK_string_number_de_zero(char* s) {
    if (!s)
        return;
    VK_string_trailing_remove(s, '0');
    const std::size_t length = std::strlen(s);
    if (length == 0) {
        std::strcpy(s, "0");
    } else if (s[length - 1] == '.') {
        s[length] = '0';
        s[length + 1] = '\0';
    }
}

} // extern "C"
