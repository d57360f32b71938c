#include "Base/rpt/rpt.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <set>

#include "Base/qvString/CString.h"

namespace {

void defaultSink(int, const char* text) {
    std::fputs(text, stderr);
    size_t n = std::strlen(text);
    if (n == 0 || text[n - 1] != '\n')
        std::fputc('\n', stderr);
    std::fflush(stderr);
}

std::atomic<ReportSink> currentSink{&defaultSink};
std::atomic<int> debugLevel{0};

std::mutex debugCodesMutex;
std::set<int>& debugCodes() {
    static std::set<int> codes;
    return codes;
}

void vreport(int level, const char* format, va_list args) {
    currentSink.load()(level, qvString::CString::vformat(format, args).c_str());
}

} // namespace

ReportSink rptSetSink(ReportSink sink) {
    ReportSink previous = currentSink.exchange(sink ? sink : &defaultSink);
    return previous == &defaultSink ? nullptr : previous;
}

#define BASE_RPT_FORWARD(level)                                                                    \
    va_list args;                                                                                  \
    va_start(args, format);                                                                        \
    vreport(level, format, args);                                                                  \
    va_end(args)

void rptError(const char* format, ...) {
    BASE_RPT_FORWARD(rptLevelError);
}
void rptVError(const char* format, va_list args) {
    vreport(rptLevelError, format, args);
}
void rptUser(const char* format, ...) {
    BASE_RPT_FORWARD(rptLevelUser);
}
void rptStatus(const char* format, ...) {
    BASE_RPT_FORWARD(rptLevelStatus);
}
void rptConfirmOK(const char* format, ...) {
    BASE_RPT_FORWARD(rptLevelConfirm);
}

void rptDebug(int level, const char* format, ...) {
    if (level > debugLevel.load())
        return;
    BASE_RPT_FORWARD(rptLevelDebug);
}

void rptSetDebugLevel(int level) {
    debugLevel.store(level);
}

void rptSetDebugCode(int code, bool on) {
    std::lock_guard<std::mutex> lock(debugCodesMutex);
    if (on)
        debugCodes().insert(code);
    else
        debugCodes().erase(code);
}

bool rptDebugCodeIsSet(int code) {
    std::lock_guard<std::mutex> lock(debugCodesMutex);
    return debugCodes().count(code) != 0;
}
