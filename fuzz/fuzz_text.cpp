// Font text forms and capitalisation on arbitrary bytes. A font that parses must print and
// parse back to an equal font; capitalisation must keep the length, change nothing but the
// case of letters, and title case must be stable when applied twice.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "ObrixBase/text/Capitalisation.h"
#include "ObrixBase/text/FontProperties.h"

namespace {

// Bytes equal but for ASCII and two-byte Latin-1 case: position by position, either equal or
// both letters of the same kind that differ by the case bit.
bool sameButForCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && (a[i] ^ b[i]) != 0x20)
            return false;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);

    qvObrixBase::FontProperties font;
    if (qvObrixBase::FontProperties::fromText(text, font).isOk()) {
        qvObrixBase::FontProperties again;
        if (!qvObrixBase::FontProperties::fromText(font.toText(), again).isOk() || again != font ||
            again.family() != font.family())
            std::abort();
    }

    const qvString::CString title = qvObrixBase::titleCase(text);
    const qvString::CString sentence = qvObrixBase::sentenceCase(text);
    if (!sameButForCase(text, title) || !sameButForCase(text, sentence))
        std::abort();
    if (qvObrixBase::titleCase(title) != title)
        std::abort();
    return 0;
}
