#include "ObrixBase/auto/containers/TdebugTrace.h"

#include <cstdarg>
#include <cstdio>

#include "ObrixBase/util/aa_debug.h"

namespace {

bool tracing = true;

const char* orNull(const char* s) {
    return s ? s : "(null)";
}

} // namespace

TdebugTrace::TdebugTrace(const char* name) noexcept : name_(name), active_(tracing) {
    if (!active_)
        return;
    AA_indent();
    AA_debug_print("Enter %s\n", orNull(name_));
    AA_set_indent(-1);
}

TdebugTrace::~TdebugTrace() {
    if (!active_)
        return;
    AA_set_indent(-2);
    AA_indent();
    AA_debug_print("Leave %s\n", orNull(name_));
}

void TdebugTrace::note(const char* format, ...) const {
    if (!active_)
        return;
    char text[1024];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    AA_indent();
    AA_debug_print("%s\n", text);
}

void TdebugTrace::setEnabled(bool on) noexcept {
    tracing = on;
}

bool TdebugTrace::enabled() noexcept {
    return tracing;
}
