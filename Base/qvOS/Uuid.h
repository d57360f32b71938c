// Random identifiers for names that must not collide between processes or machines (temporary
// files, cache entries, trace sessions).
#ifndef BASE_QVOS_UUID_H
#define BASE_QVOS_UUID_H

#include <cstring>

#include "Base/BaseExport.h"
#include "Base/qvString/CString.h"

namespace qvOS {

/// A random (version 4, variant 1) UUID, drawn from the system's random source.
class BASE_API Uuid {
public:
    /// A new random UUID. Thread-safe: each thread draws from its own generator.
    Uuid();
    /// 36 characters, lower-case hexadecimal with hyphens ("xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx").
    qvString::CString asString() const;
    /// The 16 bytes in network order.
    const unsigned char* bytes() const noexcept { return bytes_; }

private:
    unsigned char bytes_[16];
};

/// Byte-wise equality.
inline bool operator==(const Uuid& a, const Uuid& b) noexcept {
    return std::memcmp(a.bytes(), b.bytes(), 16) == 0;
}

} // namespace qvOS

#endif
