#include "ObrixBase/util/vk_warning.h"

#include <cstdarg>
#include <cstdlib>
#include <string>

#include "Base/qvOS/AppMain.h"
#include "Base/qvOS/Env.h"
#include "Base/qvOS/Process.h"
#include "Base/rpt/rpt.h"
#include "ObrixBase/util/VeskoWarningParams.h"

namespace {

using qvObrixBase::VeskoWarningParams;
using qvString::CString;

qvObrixBase::WarningPresenter warningPresenter = nullptr;

// Reads (code, text) pairs up to VK_WARN_END. Codes arrive promoted to int whatever the
// caller's enum type; unknown codes still carry a text argument, which is consumed and dropped
// so that the pairs after them stay aligned.
void readCodes(VeskoWarningParams& params, int code, va_list args) {
    while (code != VK_WARN_END) {
        CString text = va_arg(args, const char*);
        switch (code) {
        case VK_WARN_LINE:
            params.lines.push_back(text);
            break;
        case VK_WARN_BUTTON:
            params.buttons.push_back(text);
            break;
        case VK_WARN_KIND:
            params.kind = text;
            break;
        case VK_WARN_TITLE:
            params.title = text;
            break;
        default:
            break;
        }
        code = va_arg(args, int);
    }
}

// The warning's own text, so that a warning that could not be shown is still reported whole.
CString describe(const VeskoWarningParams& params) {
    CString text = params.title.empty() ? CString("Warning") : params.title;
    for (const CString& line : params.lines)
        text += "\n  " + line;
    return text;
}

int failed(const VeskoWarningParams& params, const CString& program, const CString& reason) {
    rptError("Cannot show a warning through %s: %s. The warning was: %s", program.c_str(),
             reason.c_str(), describe(params).c_str());
    return VK_WARNING_FAILED;
}

// The program answers with one decimal number and a newline: a button index or -1.
bool parseAnswer(const CString& out, int buttonCount, int& answer) {
    if (out.size() < 2 || out.size() > 12 || out.back() != '\n')
        return false;
    char* end = nullptr;
    long value = std::strtol(out.c_str(), &end, 10);
    if (end != out.c_str() + out.size() - 1 || end == out.c_str())
        return false;
    if (value < VK_WARNING_CLOSED || value >= (buttonCount > 0 ? buttonCount : 1))
        return false;
    answer = static_cast<int>(value);
    return true;
}

int showThroughProgram(const VeskoWarningParams& params) {
    CString program = qvOS::AppMain::getBinaryPath("veskoWarning");
    qvOS::ProcessOptions options;
    options.feedStdin = true;
    options.stdinText = qvObrixBase::encodeWarning(params);
    options.captureStdout = true;
    // No time limit: the program waits for a person exactly as long as the person takes.
    qvOS::ProcessResult result;
    qvUtil::Error err = qvOS::ProcessManager::runSync(program, {}, options, result);
    if (err.isError())
        return failed(params, program, err.message());
    if (result.crashed)
        return failed(params, program, CString::format("it crashed (%d)", result.exitCode));
    if (result.exitCode != 0)
        return failed(params, program, CString::format("it exited with %d", result.exitCode));
    int answer = VK_WARNING_FAILED;
    if (!parseAnswer(result.stdoutText, static_cast<int>(params.buttons.size()), answer))
        return failed(params, program, "its answer \"" + result.stdoutText + "\" is no button");
    return answer;
}

} // namespace

qvObrixBase::WarningPresenter qvObrixBase::setWarningPresenter(WarningPresenter presenter) {
    WarningPresenter previous = warningPresenter;
    warningPresenter = presenter;
    return previous;
}

int VK_warning(const qvObrixBase::VeskoWarningParams& params) {
    if (warningPresenter)
        return warningPresenter(params);
    return showThroughProgram(params);
}

extern "C" int VK_warning(VK_Warn_Code code, ...) {
    VeskoWarningParams params;
    va_list args;
    va_start(args, code);
    readCodes(params, code, args);
    va_end(args);
    return VK_warning(params);
}

extern "C" int VK_warning_buttons(int count, const char** labels, VK_Warn_Code code, ...) {
    VeskoWarningParams params;
    for (int i = 0; labels && i < count; ++i)
        params.buttons.push_back(CString(labels[i]));
    va_list args;
    va_start(args, code);
    readCodes(params, code, args);
    va_end(args);
    return VK_warning(params);
}

extern "C" int VK_warning_ok(const char* text) {
    VeskoWarningParams params;
    params.lines.push_back(CString(text));
    params.buttons.push_back("OK");
    return VK_warning(params);
}

extern "C" bool VeskoQAEnabled(void) {
    // A function-local static: worked out once, on the first call, and kept.
    static const bool enabled = [] {
        CString ignored;
        return qvOS::GetEnv("VESKO_QA", ignored) || qvOS::GetEnv("VESKO_DEBUG", ignored);
    }();
    return enabled;
}

namespace {

// The crash is the point: the platform's crash reporting must see an invalid write, so the
// sanitizers are kept from turning it into a report of their own.
#if defined(__GNUC__)
#define OBRIX_NOT_SANITIZED __attribute__((no_sanitize("undefined")))
#else
#define OBRIX_NOT_SANITIZED
#endif
[[noreturn]] OBRIX_NOT_SANITIZED void writeToAddressZero() {
    volatile int* volatile target = nullptr;
    *target = 0;
    std::abort(); // only where address zero is writable
}

} // namespace

extern "C" void VeskoQAAssert(int bug, bool condition) {
    if (condition || !VeskoQAEnabled())
        return;
    rptConfirmOK("VESKO_QA Assertion failed:  You've triggered Bug #%d,\nwhich we've been looking "
                 "for!  Please make sure to fill\nout the crash information as fully as "
                 "possible.",
                 bug);
    writeToAddressZero();
}

extern "C" void checkVeskoHeap(void) {
    (void)rptDebugCodeIsSet(800);
}
