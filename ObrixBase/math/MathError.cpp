#include "ObrixBase/math/MathError.h"

#include <cstdio>
#include <cstdlib>

#include "Base/rpt/rpt.h"

namespace {

constexpr std::uint32_t C = MATH_CONTINUE;
constexpr std::uint32_t T = MATH_TERMINATE;

// Catalogue 3: indexed by the low 12 bits of the code, so the order is the numbering.
constexpr MathMessage vectorMessages[] = {
    {T, "[BADORDER: %s]: Mismatch of function (%u) and rhs (%u) order"},
    {T, "[BADPARITY: %s]: Length (%u) of a real series must be %s"},
    {T, "[BADVERNO: %s]: Bad formatting version number.  Expected %d; got %d"},
    {T, "[DIVZERO: %s]: Divide by zero."},
    {T, "[GENERIC: %s]: Generic error number %d; %s"},
    {T, "[INDEX: %s]: Index (%d) out of range [0->%u]"},
    {T, "[LUNDEF: %s]: Undefined LU factorization"},
    {T, "[MNMATCH: %s]: Rows or columns do not match: (%u, %u) vs (%u, %u)"},
    {T, "[NOMEM: %s]: Out of memory"},
    {T, "[NPOINTS: %s]: Vector (%u) %s %d"},
    {T, "[NSQUARE: %s]: Matrix (%u, %u) is not square"},
    {T, "[RWBREQ: %s]: RWBlock new request of size %d != correct: %d"},
    {T, "[SLICE: %s]: slice (%d, %u, %d) cannot be made from vector (%u)"},
    {T, "[STRIDE: %s]: Stride must be 1"},
    {T, "[VMNMATCH: %s]: %s Vector (%u) does not match matrix: (%u, %u)"},
    {T, "[VNMATCH: %s]: Vector lengths do not match (%u vs %u)"},
    {C, "[ZEROSD: %s]: Series has zero standard deviation"},
    {C, "[ZEROVEC: %s]: %s: vector is empty"},
    {T, "[ZPIVOT: %s]: Pivot number %d is zero"},
    {T, "[BADROOT: %s]: Zero'th root of 1 requested"},
};

// Catalogue 4. The banded-matrix messages are kept so that the numbering stays fixed.
constexpr MathMessage matrixMessages[] = {
    {C, "Internal error, you've found a bug"},
    {T, "Matrix pick out of range: index %d not in 0->%d"},
    {T, "Constant reference was changed from %g to %g"},
    {T, "Complex constant reference was changed from %g+i%g to %g+i%g"},
    {T, "Matrix sizes don't match (%dx%d) vs (%dx%d)"},
    {T, "Element (%dx%d) not in matrix of size (%ux%u)"},
    {T, "Row (%d) not in matrix with %u rows"},
    {T, "Column (%d) not in matrix with %u columns"},
    {T, "Diagonal %d not in %s matrix of size (%ux%u)"},
    {T, "Can't change element (%d,%d) of %s"},
    {T, "Wrong number of points (%u) for %ux%u %s"},
    {T, "Wrong number of points (%u) for %ux%u %s with bandwidth %u"},
    {T, "Bandwidths don't match: lower: %u & %u, upper: %u & %u"},
    {T, "%dx%d matrix not square"},
    {C, "matrix not symmetric"},
    {C, "matrix not anti-symmetric"},
    {C, "matrix not hermetian"},
    {C, "matrix not banded"},
    {C, "matrix not triangular"},
    {C, "matrix not tri-diagonal"},
    {T, "inner product not possible between %s (%ux%u) and vector (%u)"},
    {T, "inner product not possible vector(%u) and %s (%ux%u)"},
    {T, "inner product not possible %s matrices (%u,%u) and (%ux%u)"},
    {T, "wrong number of elements (%u) for %s (%ux%u)"},
    {T, "cant build order %u leading submatrix of order %u matrix"},
    {T, "Restoring %s, data vector len %d, expected %u"},
};

constinit MessageCatalogue vectorCatalogue{
    3, vectorMessages, sizeof vectorMessages / sizeof vectorMessages[0], nullptr};
constinit MessageCatalogue matrixCatalogue{
    4, matrixMessages, sizeof matrixMessages / sizeof matrixMessages[0], nullptr};

// Constant-initialised so that registrars running in any unit's static initialisation find
// a valid list and handler whatever the order in which the units are initialised.
constinit MessageCatalogue* catalogueHead = nullptr;
constinit MathErrorHandler currentHandler = &defaultMathErrorHandler;

const MessageCatalogue* findCatalogue(std::uint16_t code) {
    for (const MessageCatalogue* c = catalogueHead; c != nullptr; c = c->next)
        if (c->number == static_cast<std::uint32_t>(code >> 12))
            return c;
    return nullptr;
}

} // namespace

void mathErrorVRaise(MathError error, va_list args) {
    currentHandler(error, args);
}

void mathErrorRaise(MathError error, ...) {
    va_list args;
    va_start(args, error);
    mathErrorVRaise(error, args);
    va_end(args);
}

void mathErrorRaise(unsigned code, ...) {
    va_list args;
    va_start(args, code);
    mathErrorVRaise(MathError{static_cast<std::uint16_t>(code), MATH_DEFAULT, MATH_TAG_SHORTHAND},
                    args);
    va_end(args);
}

MathErrorHandler setMathErrorHandler(MathErrorHandler handler) {
    MathErrorHandler previous = currentHandler;
    currentHandler = handler != nullptr ? handler : &defaultMathErrorHandler;
    return previous;
}

namespace {

std::uint32_t resolvedSeverity(const MathError& error, const MessageCatalogue* catalogue) {
    if (catalogue == nullptr)
        return MATH_TERMINATE;
    return error.severity == MATH_DEFAULT ? catalogue->entries[error.code & 0xFFF].severity
                                          : error.severity;
}

// The report every reporting handler writes: "** ", the message, ".\n". Returns the resolved
// severity; an unregistered catalogue reports its number instead and counts as terminating.
std::uint32_t reportMathError(const MathError& error, va_list args) {
    const MessageCatalogue* catalogue = findCatalogue(error.code);
    if (catalogue == nullptr) {
        rptError("Error number 0x%hx.", error.code);
        return MATH_TERMINATE;
    }
    // The entry index is trusted as the raiser gave it: codes come from the library's own
    // enumerations, never from user data.
    const MathMessage& entry = catalogue->entries[error.code & 0xFFF];
    rptError("** ");
    va_list copy;
    va_copy(copy, args);
    rptVError(entry.format, copy);
    va_end(copy);
    rptError(".\n");
    return resolvedSeverity(error, catalogue);
}

// The reporting sink may be the standard streams, buffered when they are not terminals; abort
// would drop what they still hold, which is the very message that says why.
[[noreturn]] void flushAndAbort() {
    std::fflush(stdout);
    std::fflush(stderr);
    std::abort();
}

} // namespace

void defaultMathErrorHandler(const MathError& error, va_list args) {
    if (error.code == 0)
        return;
    if (reportMathError(error, args) == MATH_CONTINUE) {
        rptError("** Processing continues.\n");
        return;
    }
    rptError("** Processing terminated.\n");
    flushAndAbort();
}

void continuingMathErrorHandler(const MathError& error, va_list args) {
    if (error.code == 0)
        return;
    reportMathError(error, args);
    rptError("** Processing continues.\n");
}

MathException::MathException(std::uint16_t code, std::uint32_t severity, const std::string& message)
    : std::runtime_error(message), code_(code), severity_(severity) {
}

void throwingMathErrorHandler(const MathError& error, va_list args) {
    if (error.code == 0)
        return;
    const MessageCatalogue* catalogue = findCatalogue(error.code);
    std::string message;
    if (catalogue == nullptr) {
        char text[32];
        std::snprintf(text, sizeof text, "Error number 0x%hx.", error.code);
        message = text;
    } else {
        const char* format = catalogue->entries[error.code & 0xFFF].format;
        va_list copy;
        va_copy(copy, args);
        const int n = std::vsnprintf(nullptr, 0, format, copy);
        va_end(copy);
        if (n > 0) {
            message.resize(static_cast<std::size_t>(n));
            va_copy(copy, args);
            std::vsnprintf(message.data(), message.size() + 1, format, copy);
            va_end(copy);
        }
    }
    throw MathException(error.code, resolvedSeverity(error, catalogue), message);
}

const char* mathErrorFormat(std::uint16_t code) {
    const MessageCatalogue* catalogue = findCatalogue(code);
    if (catalogue == nullptr || (code & 0xFFFu) >= catalogue->count)
        return nullptr;
    return catalogue->entries[code & 0xFFF].format;
}

std::uint32_t mathErrorDefaultSeverity(std::uint16_t code) {
    const MessageCatalogue* catalogue = findCatalogue(code);
    if (catalogue == nullptr || (code & 0xFFFu) >= catalogue->count)
        return MATH_TERMINATE;
    return catalogue->entries[code & 0xFFF].severity;
}

void mathCatalogueRegister(MessageCatalogue* catalogue) {
    MessageCatalogue** link = &catalogueHead;
    for (; *link != nullptr; link = &(*link)->next)
        if (*link == catalogue)
            return;
    catalogue->next = nullptr;
    *link = catalogue;
}

void mathCatalogueUnregister(std::uint32_t number) {
    for (MessageCatalogue** link = &catalogueHead; *link != nullptr; link = &(*link)->next) {
        if ((*link)->number == number) {
            MessageCatalogue* found = *link;
            *link = found->next;
            found->next = nullptr;
            return;
        }
    }
}

const MessageCatalogue* mathCatalogueList() {
    return catalogueHead;
}

void mathCatalogueAcquire(std::uint16_t& counter, MessageCatalogue* catalogue) {
    if (counter++ == 0)
        mathCatalogueRegister(catalogue);
}

void mathCatalogueRelease(std::uint16_t& counter, std::uint32_t number) {
    if (--counter == 0)
        mathCatalogueUnregister(number);
}

std::uint16_t& RWMATHInit::counter() {
    static constinit std::uint16_t count = 0;
    return count;
}
MessageCatalogue* RWMATHInit::catalogue() {
    return &vectorCatalogue;
}

std::uint16_t& RWMATXInit::counter() {
    static constinit std::uint16_t count = 0;
    return count;
}
MessageCatalogue* RWMATXInit::catalogue() {
    return &matrixCatalogue;
}
