// Arbitrary bytes on veskoWarning's standard input, read as a warning description. Reading
// either refuses them with a reason or gives a description that writes back to a text which
// reads to the same description again; it never reads past the input or allocates for a
// byte count the input does not hold. Run: ./build/fuzz/bin/fuzz_warning_description
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "ObrixBase/util/VeskoWarningParams.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    qvString::CString text(reinterpret_cast<const char*>(data), size);
    qvObrixBase::VeskoWarningParams params;
    qvString::CString error;
    if (!qvObrixBase::decodeWarning(text, params, error)) {
        if (error.empty()) {
            std::fprintf(stderr, "a refused description has no reason\n");
            std::abort();
        }
        return 0;
    }
    qvObrixBase::VeskoWarningParams again;
    if (!qvObrixBase::decodeWarning(qvObrixBase::encodeWarning(params), again, error) ||
        !(again == params)) {
        std::fprintf(stderr, "a description does not survive writing it back: %s\n", error.c_str());
        std::abort();
    }
    return 0;
}
