// Tells a local file name from a URL of another scheme, so that callers can decide whether a
// name can be handed to the file services.
#ifndef BASE_QVOS_URL_H
#define BASE_QVOS_URL_H

#include "Base/BaseExport.h"

namespace qvOS {

/// URL classification.
class BASE_API URL {
public:
    /// True for a plain path (absolute or relative) and for "file:" (any case); false for any
    /// other "scheme:" prefix (letters, digits, '+', '-', '.' starting with a letter, two or
    /// more characters). A single letter before ':' is a drive ("C:") and local on every
    /// system. Null gives false; "" is a (relative, empty) path and gives true.
    static bool isLocalFile(const char* url) noexcept;
};

} // namespace qvOS

#endif
