// veskoWarning: shows one warning and answers with the button pressed. The description comes
// on standard input (the text form of qvObrixBase::encodeWarning); the answer goes to standard
// output as one decimal line. Everything but argument parsing is in WarningProgram.
#include <cstdio>
#include <cstring>
#include <string>

#include "ObrixBase/util/VeskoWarningParams.h"
#include "programs/veskoWarning/WarningDialog.h"
#include "programs/veskoWarning/WarningProgram.h"

namespace {

const char* const kUsage =
    "usage: veskoWarning [--frontend auto|dialog|terminal|log] [--print] < description\n"
    "Shows the warning described on standard input and writes the index of the button\n"
    "pressed (0 for the first, -1 when the window is closed) to standard output.\n"
    "  --frontend  auto (default): the dialog when a desktop is there, else the terminal,\n"
    "              else log the warning to standard error and answer 0;\n"
    "              dialog, terminal, log: only that way (exit 2 when it is not there)\n"
    "  --print     write the description back as read, and ask nothing\n"
    "VESKO_WARNING_ANSWER=<label or index> answers without asking.\n"
    "Exit status: 0 with an answer, 2 on bad arguments or a bad description.\n";

// The largest description read: far beyond any warning a person can read, small enough that
// a runaway writer cannot exhaust memory.
constexpr std::size_t kMaxDescriptionBytes = 64u << 20;

bool readAll(std::FILE* in, qvString::CString& text) {
    char buffer[65536];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, in)) > 0) {
        text.append(buffer, n);
        if (text.size() > kMaxDescriptionBytes)
            return false;
    }
    return true;
}

int fail(const std::string& reason) {
    std::fprintf(stderr, "veskoWarning: %s\n", reason.c_str());
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    veskoWarning::Frontend frontend = veskoWarning::Frontend::Auto;
    bool print = false;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            std::fputs(kUsage, stdout);
            return 0;
        }
        if (arg == "--print") {
            print = true;
            continue;
        }
        std::string value;
        if (arg == "--frontend" && i + 1 < argc)
            value = argv[++i];
        else if (arg.rfind("--frontend=", 0) == 0)
            value = arg.substr(std::strlen("--frontend="));
        else
            return fail("unknown argument \"" + arg + "\" (see --help)");
        if (value == "auto")
            frontend = veskoWarning::Frontend::Auto;
        else if (value == "dialog")
            frontend = veskoWarning::Frontend::Dialog;
        else if (value == "terminal")
            frontend = veskoWarning::Frontend::Terminal;
        else if (value == "log")
            frontend = veskoWarning::Frontend::Log;
        else
            return fail("unknown front end \"" + value + "\" (auto, dialog, terminal, log)");
    }

    veskoWarning::useBinaryStdio();
    qvString::CString text;
    if (!readAll(stdin, text))
        return fail("the description is larger than 64 MiB");
    qvObrixBase::VeskoWarningParams params;
    qvString::CString error;
    if (!qvObrixBase::decodeWarning(text, params, error))
        return fail(error);
    if (print) {
        qvString::CString back = qvObrixBase::encodeWarning(params);
        std::fwrite(back.data(), 1, back.size(), stdout);
        return std::fflush(stdout) == 0 ? 0 : 2;
    }
#ifdef VESKOWARNING_HAS_DIALOG
    veskoWarning::DialogFn dialog = &veskoWarning::showWarningDialog;
#else
    veskoWarning::DialogFn dialog = nullptr;
#endif
    return veskoWarning::run(params, frontend, dialog, stdout, stderr);
}
