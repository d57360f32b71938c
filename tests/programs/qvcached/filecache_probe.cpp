// A second application process for the cache's fault tests. Exit status tells the outcome:
//   probe DIR add KEY BYTES      0 added, 3 refused
//   probe DIR hold KEY SECONDS   finds KEY, creates DIR.ready, holds it SECONDS: 0, 3 not found
//   probe DIR loop KEY COUNT     COUNT finds of KEY: 0 all found, 5 the server went away
// and 4 when initialize fails, 2 on bad arguments.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "ObrixBase/filecache/FileCache.h"

int main(int argc, char** argv) {
    if (argc != 5)
        return 2;
    const std::string dir = argv[1], command = argv[2], key = argv[3];
    const long number = std::atol(argv[4]);
    qvObrixBase::FileCache cache;
    if (qvUtil::Error err = cache.initialize(dir, 0, 0); err.isError()) {
        std::fprintf(stderr, "probe: %s\n", err.message().c_str());
        return 4;
    }
    if (command == "add") {
        const qvString::CString path = cache.generatePath();
        std::FILE* f = std::fopen(path.c_str(), "wb");
        const std::string bytes(static_cast<std::size_t>(number), 'x');
        std::fwrite(bytes.data(), 1, bytes.size(), f);
        std::fclose(f);
        return cache.add(key, path) ? 0 : 3;
    }
    if (command == "hold") {
        auto item = cache.find(key);
        if (!item)
            return 3;
        std::fclose(std::fopen((dir + ".ready").c_str(), "w"));
        std::this_thread::sleep_for(std::chrono::seconds(number));
        return 0;
    }
    if (command == "loop") {
        for (long i = 0; i < number; ++i)
            if (!cache.find(key))
                return 5;
        return 0;
    }
    return 2;
}
