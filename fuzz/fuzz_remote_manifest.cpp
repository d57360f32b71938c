// The cache server's remote tier reads two texts it did not write itself: manifests from a
// shared Redis server (any client of it may have written them) and remote.conf. Neither reader
// may crash, and every manifest accepted must be the one spelling formatManifest gives it,
// with a chunk count that fits its size.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "programs/qvcached/RemoteTier.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    qvcached::RemoteManifest manifest;
    if (qvcached::parseManifest(text, manifest)) {
        if (qvcached::formatManifest(manifest) != text ||
            manifest.chunks !=
                (manifest.size + qvcached::RemoteChunkBytes - 1) / qvcached::RemoteChunkBytes ||
            manifest.size > qvcached::RemoteMaxObjectBytes)
            std::abort();
    }
    qvcached::RemoteConfig config;
    if (qvcached::parseRemoteUrl(text, config).isOk() &&
        (config.host.empty() || config.port < 1 || config.port > 65535 || config.database < 0))
        std::abort();

    static const std::filesystem::path dir =
        std::filesystem::temp_directory_path() / "obrix-fuzz-remote-conf";
    std::filesystem::create_directories(dir);
    std::ofstream(dir / qvcached::RemoteConfigName, std::ios::binary | std::ios::trunc) << text;
    std::optional<qvcached::RemoteConfig> loaded;
    if (qvcached::loadRemoteConfig(dir, loaded).isOk() && loaded && loaded->host.empty())
        std::abort();
    return 0;
}
