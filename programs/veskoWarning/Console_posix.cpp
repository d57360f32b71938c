#include "programs/veskoWarning/WarningProgram.h"

namespace veskoWarning {

// The controlling terminal, not stdin: stdin carries the description. A process without one
// (a service, a job started with setsid) cannot open /dev/tty. Two streams, because one
// stream may not switch from reading to writing without a seek, which a terminal refuses.
bool openTerminal(std::FILE*& in, std::FILE*& out) {
    in = std::fopen("/dev/tty", "r");
    if (!in)
        return false;
    out = std::fopen("/dev/tty", "w");
    if (!out) {
        std::fclose(in);
        in = nullptr;
        return false;
    }
    return true;
}

} // namespace veskoWarning

namespace veskoWarning {

// POSIX streams carry bytes as they are.
void useBinaryStdio() {
}

} // namespace veskoWarning
