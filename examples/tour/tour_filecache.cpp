// File cache: one process computes a file and adds it to a shared cache; a second process (the
// tour started again) finds it there instead of computing it. The cache server qvcached is
// started by the first initialize and joined by the second through the directory's lock file.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "Base/qvOS/AppMain.h"
#include "Base/qvOS/Env.h"
#include "Base/qvOS/File.h"
#include "Base/qvOS/Process.h"
#include "Base/qvOS/SystemInfo.h"
#include "Base/qvOS/Uuid.h"
#include "ObrixBase/ObrixBase.h"
#include "examples/tour/tour.h"

namespace fs = std::filesystem;

int tourFileCacheReader(const char* directory, const char* key) {
    qvObrixBase::FileCache cache;
    if (qvUtil::Error err = cache.initialize(directory, 0, 0); err.isError()) {
        std::printf("  reader: %s\n", err.message().c_str());
        return 1;
    }
    qv::Reference<qvObrixBase::FileCacheItem> item = cache.find(key);
    if (!item) {
        std::printf("  reader: '%s' is not in the cache\n", key);
        return 1;
    }
    std::ifstream in(item->path().c_str());
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::printf("  reader (process %lld) found '%s': \"%s\"\n",
                static_cast<long long>(qvOS::ProcessManager::currentId()), key, text.c_str());
    return 0;
}

void tourFileCache() {
    tourHeading("File cache");
    qvOS::FileInfo server;
    if (qvOS::File::query(qvOS::AppMain::getBinaryPath("qvcached"), server).isError() ||
        !server.exists) {
        std::printf("  no cache server in this build (it needs SQLite): chapter skipped\n");
        return;
    }
    // A real application keeps one cache directory for good; the tour uses a fresh one and
    // asks its server to leave two seconds after the last client instead of ten minutes.
    const fs::path dir =
        fs::path(qvOS::tempDirectory().c_str()) / ("obrix-tour-cache-" + qvOS::Uuid().asString());
    qvOS::SetEnv("QVCACHED_IDLE_TIMEOUT", "2");
    const char* key = "tour/tessellation-of-part-7";
    {
        qvObrixBase::FileCache cache;
        // At most 100 entries and 64 MB; the server evicts the least recently used beyond.
        if (qvUtil::Error err = cache.initialize(dir.string(), 100, 64 << 20); err.isError()) {
            std::printf("  no cache: %s\n", err.message().c_str());
            return;
        }
        std::printf("  writer (process %lld): find('%s') -> %s\n",
                    static_cast<long long>(qvOS::ProcessManager::currentId()), key,
                    cache.find(key) ? "hit" : "miss, so compute it");
        const qvString::CString path = cache.generatePath();
        std::ofstream(path.c_str()) << "1024 triangles";
        qv::Reference<qvObrixBase::FileCacheItem> item = cache.add(key, path);
        std::printf("  writer added it as %s\n", item ? "a cached file" : "nothing (refused)");

        qvOS::ProcessOptions options;
        options.captureStdout = true;
        options.timeoutSeconds = 30;
        qvOS::ProcessResult result;
        qvOS::ProcessManager::runSync(qvOS::AppMain::getExecutablePath(),
                                      {"--filecache-reader", dir.string(), key}, options, result);
        std::printf("%s", result.stdoutText.c_str());
        // While either process holds the item, the server keeps the file whatever the limits.
    }
    qvOS::SetEnv("QVCACHED_IDLE_TIMEOUT", nullptr);
    std::error_code ec;
    fs::remove_all(dir, ec);
}
