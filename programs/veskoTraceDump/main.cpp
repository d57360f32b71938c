// veskoTraceDump: prints a trace ring file (VeskoTrace-<uuid>.dat), for instance the one a
// crashed session left behind, as the text log or as trace-event JSON.
#include <cstring>
#include <iostream>

#include "programs/veskoTraceDump/TraceDump.h"

namespace {

const char Usage[] =
    "usage: veskoTraceDump [--format=text|json] RING-FILE\n"
    "Prints the records of a trace ring file, oldest first.\n"
    "  --format=text   one record a line, as the trace log holds them (the default)\n"
    "  --format=json   trace-event JSON for a trace viewer: one instant event per line,\n"
    "                  the subsystem as its category\n"
    "  -h, --help      this text\n"
    "A record that was being written when the writer died is left out and noted on stderr.\n";

int badArguments(const char* reason) {
    std::cerr << "veskoTraceDump: " << reason << " (try --help)\n";
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    veskoTraceDump::Format format = veskoTraceDump::Format::Text;
    const char* path = nullptr;
    for (int i = 1; i < argc; ++i) {
        const char* arg = argv[i];
        if (!std::strcmp(arg, "-h") || !std::strcmp(arg, "--help")) {
            std::cout << Usage;
            return 0;
        }
        if (!std::strcmp(arg, "--format=text")) {
            format = veskoTraceDump::Format::Text;
        } else if (!std::strcmp(arg, "--format=json")) {
            format = veskoTraceDump::Format::Json;
        } else if (!std::strncmp(arg, "--format", 8)) {
            return badArguments("--format takes =text or =json");
        } else if (arg[0] == '-' && arg[1] != '\0') {
            return badArguments("unknown option");
        } else if (path) {
            return badArguments("more than one ring file given");
        } else {
            path = arg;
        }
    }
    if (!path)
        return badArguments("no ring file given");

    const qvUtil::Error error = veskoTraceDump::printRing(path, format, std::cout, std::cerr);
    std::cout.flush();
    if (error.isError()) {
        std::cerr << "veskoTraceDump: " << error.message() << '\n';
        return 1;
    }
    return 0;
}
