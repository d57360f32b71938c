#include "Base/qvOS/URL.h"

#include <cctype>

namespace qvOS {

bool URL::isLocalFile(const char* url) noexcept {
    if (!url)
        return false;
    // A scheme is a letter followed by letters, digits, '+', '-' or '.', then ':'. One letter
    // before the ':' is a drive, which names a local file on every system.
    if (!std::isalpha(static_cast<unsigned char>(url[0])))
        return true;
    std::size_t n = 1;
    while (std::isalnum(static_cast<unsigned char>(url[n])) || url[n] == '+' || url[n] == '-' ||
           url[n] == '.')
        ++n;
    if (url[n] != ':' || n == 1)
        return true;
    if (n != 4)
        return false;
    const char* file = "file";
    for (std::size_t i = 0; i < 4; ++i)
        if (std::tolower(static_cast<unsigned char>(url[i])) != file[i])
            return false;
    return true;
}

} // namespace qvOS
