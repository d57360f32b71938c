// qvcached: the file cache server. Applications start it themselves (with --port) and it
// exits on its own when idle; an operator runs it for --stats and --clear.
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include "programs/qvcached/CacheServer.h"
#include "programs/qvcached/OperatorCommands.h"

namespace {

const char* const Usage =
    "usage: qvcached --port PORT [--idle-timeout SECONDS]\n"
    "       qvcached --stats DIR\n"
    "       qvcached --clear DIR\n"
    "\n"
    "Serves the file cache of the applications on this machine. Applications start it\n"
    "themselves: it connects back to PORT on 127.0.0.1, serves the cache directory that\n"
    "the application names, and exits after SECONDS without clients (default 600, or the\n"
    "value of QVCACHED_IDLE_TIMEOUT).\n"
    "A file remote.conf in the cache directory (\"url = redis://host:port/db\",\n"
    "\"prefix = TEAM\", \"password = ...\") adds a team's shared Redis tier behind the\n"
    "local cache.\n"
    "  --stats DIR   print the entries, bytes, hits, misses and evictions of a cache, and\n"
    "                the remote tier's hits, misses, bytes and errors where it has one\n"
    "  --clear DIR   delete every cached file of a cache that no server is using\n"
    "  --help        print this text\n";

int fail(const std::string& reason) {
    std::cerr << "qvcached: " << reason << "\n";
    return 2;
}

bool parseNumber(const char* text, double& value) {
    char* end = nullptr;
    value = std::strtod(text, &end);
    return end != text && *end == '\0' && value >= 0;
}

} // namespace

int main(int argc, char** argv) {
    qvcached::ServerOptions options;
    if (const char* idle = std::getenv("QVCACHED_IDLE_TIMEOUT"))
        parseNumber(idle, options.idleSeconds);
    std::string stats, clear;
    bool havePort = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            std::cout << Usage;
            return 0;
        }
        if (i + 1 >= argc)
            return fail(arg.rfind("--", 0) == 0 ? arg + " needs a value"
                                                : "unknown argument " + arg);
        const char* value = argv[++i];
        double number = 0;
        if (arg == "--port") {
            if (!parseNumber(value, number) || number < 1 || number > 65535 ||
                number != static_cast<int>(number))
                return fail(std::string("bad port ") + value);
            options.port = static_cast<int>(number);
            havePort = true;
        } else if (arg == "--idle-timeout") {
            if (!parseNumber(value, number))
                return fail(std::string("bad idle timeout ") + value);
            options.idleSeconds = number;
        } else if (arg == "--stats") {
            stats = value;
        } else if (arg == "--clear") {
            clear = value;
        } else {
            return fail("unknown argument " + arg);
        }
    }
    std::string error;
    int status = 0;
    if (!stats.empty())
        status = qvcached::printStats(stats, std::cout, error);
    else if (!clear.empty())
        status = qvcached::clearCache(clear, std::cout, error);
    else if (havePort)
        status = qvcached::runServer(options, error);
    else
        return fail("nothing to do (try --help)");
    if (status != 0)
        std::cerr << "qvcached: " << error << "\n";
    return status;
}
