// The lines of the trace crash test: line n carries a payload that only n gives, of a length
// that varies from line to line so that records of every size meet the end of the ring.
#ifndef OBRIX_TESTS_OBRIXBASE_UTIL_TRACECRASHPAYLOAD_H
#define OBRIX_TESTS_OBRIXBASE_UTIL_TRACECRASHPAYLOAD_H

namespace obrix::test {

constexpr unsigned MaxCrashPayload = 180;

/// Writes line n's payload and its zero to out (MaxCrashPayload + 1 bytes at most).
inline void crashPayload(unsigned long long n, char* out) {
    const unsigned length = unsigned((n * 7919) % (MaxCrashPayload + 1));
    for (unsigned i = 0; i < length; ++i)
        out[i] = char('a' + (n + i) % 26);
    out[length] = '\0';
}

} // namespace obrix::test

#endif
