// A program built against an installed library that needs the helper programs: the file cache
// starts the packaged qvcached, and the trace reader runs. Both must be found by the installed
// libBase in the packages' program folder (argv[1]), with no OBRIX_HELPER_DIR.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "Base/qvOS/AppMain.h"
#include "Base/qvOS/Env.h"
#include "Base/qvOS/Process.h"
#include "ObrixBase/ObrixBase.h"

namespace fs = std::filesystem;

static int fail(const std::string& what) {
    std::fprintf(stderr, "helpers_consumer: %s\n", what.c_str());
    return 1;
}

int main(int argc, char** argv) {
    if (argc != 3)
        return fail("usage: helpers_consumer <expected program folder> <scratch folder>");
    const fs::path programs = fs::canonical(argv[1]);
    for (const char* name : {"qvcached", "veskoWarning", "veskoTraceDump"}) {
        const fs::path found(qvOS::AppMain::getBinaryPath(name).c_str());
        std::error_code ec;
        if (fs::canonical(found, ec).parent_path() != programs)
            return fail(std::string(name) + " found at '" + found.string() + "', not in " +
                        programs.string());
    }

    qvOS::ProcessOptions options;
    options.captureStdout = true;
    options.timeoutSeconds = 30;
    qvOS::ProcessResult result;
    if (qvOS::ProcessManager::runSync(qvOS::AppMain::getBinaryPath("veskoTraceDump"), {"--help"},
                                      options, result)
            .isError() ||
        result.exitCode != 0)
        return fail("veskoTraceDump --help did not run");

    // The server leaves soon after its last client, so nothing outlives the test.
    qvOS::SetEnv("QVCACHED_IDLE_TIMEOUT", "2");
    qvObrixBase::FileCache cache;
    if (qvUtil::Error err = cache.initialize(argv[2], 10, 1 << 20); err.isError())
        return fail("the packaged cache server did not start: " +
                    std::string(err.message().c_str()));
    const qvString::CString path = cache.generatePath();
    std::ofstream(path.c_str()) << "packaged";
    if (!cache.add("package/check", path) || !cache.find("package/check"))
        return fail("the packaged cache server lost an entry");
    std::printf("helpers_consumer: helper programs found in %s; the cache server answered\n",
                programs.string().c_str());
    return 0;
}
