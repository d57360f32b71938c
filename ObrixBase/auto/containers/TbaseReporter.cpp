#include "ObrixBase/auto/containers/TbaseReporter.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "Base/rpt/rpt.h"

TbaseReporter::TbaseReporter(const char* task) noexcept {
    std::snprintf(task_, sizeof task_, "%s", task ? task : "");
}

TbaseReporter::~TbaseReporter() = default;

void TbaseReporter::progress(double fraction) {
    if (!(fraction > 0.0))
        fraction = 0.0; // NaN too
    if (fraction > 1.0)
        fraction = 1.0;
    // Truncated, not rounded: 100% means the work is done, not that 99.5% of it is.
    const int percent = static_cast<int>(fraction * 100.0);
    if (percent == lastPercent_)
        return;
    lastPercent_ = percent;
    reportProgress(task_, percent);
}

void TbaseReporter::warning(const char* format, ...) {
    char text[1024];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    ++warnings_;
    reportWarning(text);
}

void TbaseReporter::error(const char* format, ...) {
    char text[1024];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    ++errors_;
    reportError(text);
}

void TbaseReporter::reportProgress(const char* task, int percent) {
    rptStatus("%s: %d%%", task, percent);
}

void TbaseReporter::reportWarning(const char* text) {
    rptUser("Warning: %s", text);
}

void TbaseReporter::reportError(const char* text) {
    rptError("%s", text);
}

int TbaseReporter::cancelRequested() {
    return 0;
}
