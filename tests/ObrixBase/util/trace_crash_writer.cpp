// Helper of the trace log's crash test: traces numbered lines into a new ring in the given
// directory until it is killed. Each line is "<n> <payload>", the payload a function of n, so
// the test can tell a whole record from a damaged one. Gives up by itself after 60 seconds
// so that a test that fails to kill it leaves nothing running.
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "ObrixBase/util/VeskoTrace.h"
#include "tests/ObrixBase/util/TraceCrashPayload.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: trace_crash_writer DIRECTORY RING-BYTES\n");
        return 2;
    }
    if (!VeskoTrace::initialize(argv[1], std::strtoull(argv[2], nullptr, 10), 1)) {
        std::fprintf(stderr, "trace_crash_writer: no ring in %s\n", argv[1]);
        return 1;
    }
    const std::time_t end = std::time(nullptr) + 60;
    char payload[obrix::test::MaxCrashPayload + 1];
    for (unsigned long long n = 0;; ++n) {
        obrix::test::crashPayload(n, payload);
        VeskoTrace::trace1(VeskoTrace::Debug, "%llu %s", n, payload);
        if (n % 4096 == 0 && std::time(nullptr) > end)
            return 3;
    }
}
