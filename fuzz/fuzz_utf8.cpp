// UTF-8 to wide and back on arbitrary bytes. Text that decodes without a replacement character
// was well-formed and must come back byte for byte; any text, once decoded and encoded, is
// well-formed and must then be stable. The wide form never holds a value outside Unicode or,
// where wchar_t has 32 bits, a surrogate.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "Base/qvString/CString.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const qvString::CString bytes(reinterpret_cast<const char*>(data), size);
    const qvString::IString wide = bytes.toWide();
    bool replaced = false;
    for (wchar_t w : wide) {
        const auto c = static_cast<std::uint32_t>(w);
        if (c > 0x10FFFF)
            std::abort();
        if constexpr (sizeof(wchar_t) == 4)
            if (c >= 0xD800 && c < 0xE000)
                std::abort();
        replaced |= c == 0xFFFD;
    }
    const qvString::CString back = wide.toUtf8();
    // Input that held U+FFFD itself round-trips too; only a replacement may change the bytes.
    if (!replaced && back != bytes)
        std::abort();
    if (back.toWide() != wide || back.toWide().toUtf8() != back)
        std::abort();
    return 0;
}
