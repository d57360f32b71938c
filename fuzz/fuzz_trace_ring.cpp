// Trace ring images as a crash might leave them, or as any file might look: recover must
// either hand back zero-terminated records lying inside the image or refuse it, never read
// outside it or loop.
#include <cstdint>
#include <cstring>

#include "ObrixBase/util/VeskoTrace.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Most random inputs fail the magic; a valid fixed header part lets the fuzzer reach the
    // positions and records quickly.
    unsigned char image[64 + 4096];
    VeskoTrace::FileHeader header{};
    header.magic = VeskoTrace::FileMagic;
    header.version = VeskoTrace::FileVersion;
    header.headerBytes = 64;
    header.ringBytes = 512;
    std::memset(image, 0, sizeof image);
    std::memcpy(image, &header, 16);
    const std::size_t n = size < sizeof image - 16 ? size : sizeof image - 16;
    if (n)
        std::memcpy(image + 16, data, n);
    if (size > 0 && data[0] & 1)
        header.ringBytes = 512u << (data[0] >> 1 & 3); // up to 4096
    std::memcpy(image + 8, &header.ringBytes, 4);

    std::size_t total = 0;
    auto count = [](void* context, const char* text) {
        *static_cast<std::size_t*>(context) += std::strlen(text) + 1;
    };
    VeskoTrace::RecoverResult result;
    VeskoTrace::recover(image, 64 + header.ringBytes, count, &total, &result);
    if (total > header.ringBytes)
        __builtin_trap();
    // The raw bytes as they came, header and all.
    VeskoTrace::recover(data, size, count, &total, &result);
    return 0;
}
