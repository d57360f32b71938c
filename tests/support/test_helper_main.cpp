// obrix_test_helper: a small child program for the process and mapped-file tests.
//   echo ARGS...        prints each argument as "<length>:<bytes>\n", so any byte survives
//   exit N              exits with status N
//   cat                 copies stdin to stdout
//   sleep SECONDS       sleeps, then exits 0
//   read-mapped PATH N  maps PATH and prints its first N bytes
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "Base/qvOS/MemoryMappedFile.h"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h> // _setmode: the C runtime would turn "\n" into "\r\n" and back otherwise
#endif

static int run(int argc, char** argv) {
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0) {
        std::fprintf(argc < 2 ? stderr : stdout,
                     "usage: obrix_test_helper echo ARGS... | exit N | cat | sleep SECONDS | "
                     "read-mapped PATH N\n");
        return argc < 2 ? 2 : 0;
    }
    const char* mode = argv[1];
    if (std::strcmp(mode, "echo") == 0) {
        for (int i = 2; i < argc; ++i)
            std::printf("%lu:%s\n", static_cast<unsigned long>(std::strlen(argv[i])), argv[i]);
        return 0;
    }
    if (std::strcmp(mode, "exit") == 0 && argc == 3)
        return std::atoi(argv[2]);
    if (std::strcmp(mode, "cat") == 0) {
        char buffer[4096];
        std::size_t n;
        while ((n = std::fread(buffer, 1, sizeof buffer, stdin)) > 0)
            std::fwrite(buffer, 1, n, stdout);
        return 0;
    }
    if (std::strcmp(mode, "sleep") == 0 && argc == 3) {
        std::this_thread::sleep_for(std::chrono::duration<double>(std::atof(argv[2])));
        return 0;
    }
    if (std::strcmp(mode, "read-mapped") == 0 && argc == 4) {
        qvOS::MemoryMappedFile file;
        if (auto e = file.openFile(argv[2], false); e.isError()) {
            std::fprintf(stderr, "%s\n", e.message().c_str());
            return 3;
        }
        std::size_t n = std::strtoul(argv[3], nullptr, 10);
        std::fwrite(file.data(), 1, n < file.size() ? n : file.size(), stdout);
        return 0;
    }
    std::fprintf(stderr, "obrix_test_helper: unknown mode or wrong arguments: %s\n", mode);
    return 2;
}

#ifdef _WIN32
// The wide entry point: the C runtime splits the command line by the same rules as for main,
// but without squeezing the arguments through the ANSI code page, so UTF-8 survives.
int wmain(int argc, wchar_t** wargv) {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    std::vector<qvString::CString> utf8;
    for (int i = 0; i < argc; ++i)
        utf8.push_back(qvString::IString(wargv[i]).toUtf8());
    std::vector<char*> argv;
    for (auto& a : utf8)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    return run(argc, argv.data());
}
#else
int main(int argc, char** argv) {
    return run(argc, argv);
}
#endif
