#include "programs/veskoWarning/WarningProgram.h"

#include <fcntl.h>
#include <io.h>

namespace veskoWarning {

// The console, not stdin: stdin carries the description. A process without a console (a
// service, a program started detached) cannot open CONIN$.
bool openTerminal(std::FILE*& in, std::FILE*& out) {
    in = std::fopen("CONIN$", "r");
    if (!in)
        return false;
    out = std::fopen("CONOUT$", "w");
    if (!out) {
        std::fclose(in);
        in = nullptr;
        return false;
    }
    return true;
}

// Text mode would turn "\r\n" into "\n" and stop at a Ctrl-Z byte, breaking the byte counts
// of the description, and would end the answer with "\r\n".
void useBinaryStdio() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
}

} // namespace veskoWarning
