// The numeric error handler: every check of the numeric classes raises a MathError through one
// process-wide handler instead of throwing. Messages live in numbered catalogues (3: vectors,
// 4: matrices, 5: factorisations) that counted registrars link into one list at load time.
// Single-threaded: the handler pointer, the catalogue list and the counters are plain globals.
#ifndef OBRIX_MATH_MATHERROR_H
#define OBRIX_MATH_MATHERROR_H

#include <cstdarg>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "ObrixBase/ObrixExport.h"

/// One raised error. The code's high 4 bits name the catalogue, the low 12 bits the entry.
struct MathError {
    /// The catalogue in the high 4 bits, the entry in the low 12.
    std::uint16_t code;
    /// 0 continue after reporting, 1 the catalogue entry's default, 2 terminate.
    std::uint32_t severity;
    /// Caller's marker, handed to the handler untouched; the default handler ignores it.
    std::uint16_t tag;
};

/// Severity requests of MathError::severity and defaults of catalogue entries.
enum MathSeverity : std::uint32_t {
    MATH_CONTINUE = 0,
    MATH_DEFAULT = 1,
    MATH_TERMINATE = 2,
};

/// Tags used by the library's own raisers.
enum MathErrorTag : std::uint16_t {
    MATH_TAG_VECTOR_CHECK = 0x900E,
    MATH_TAG_PICK_CHECK = 0x900D,
    MATH_TAG_ALLOCATOR = 0x901A,
    MATH_TAG_SHORTHAND = 0xF000,
};

/// One catalogue entry: its default severity (MATH_CONTINUE or MATH_TERMINATE) and its
/// printf-style message format.
struct MathMessage {
    /// MATH_CONTINUE or MATH_TERMINATE.
    std::uint32_t severity;
    /// Printf-style, filled with the raise's arguments.
    const char* format;
};

/// A message catalogue: a node of the global list of registered catalogues.
struct MessageCatalogue {
    /// The catalogue's number (the code's high 4 bits).
    std::uint32_t number;
    /// The entries, indexed by the code's low 12 bits.
    const MathMessage* entries;
    /// Entries in `entries`.
    std::uint32_t count;
    /// The next registered catalogue: the registry links it, callers leave it null.
    MessageCatalogue* next;
};

/// Catalogue 3 (vectors and storage): codes `MATH_BADORDER` (0x3000) to `MATH_BADROOT` (0x3013).
/// Every format starts with
/// "[KEY: %s]" where %s is the reporting class or function.
enum MathCatalogue3 : std::uint16_t {
    MATH_BADORDER = 0x3000,
    MATH_BADPARITY = 0x3001,
    MATH_BADVERNO = 0x3002,
    MATH_DIVZERO = 0x3003,
    MATH_GENERIC = 0x3004,
    MATH_INDEX = 0x3005,
    MATH_LUNDEF = 0x3006,
    MATH_MNMATCH = 0x3007,
    MATH_NOMEM = 0x3008,
    MATH_NPOINTS = 0x3009,
    MATH_NSQUARE = 0x300A,
    MATH_RWBREQ = 0x300B,
    MATH_SLICE = 0x300C,
    MATH_STRIDE = 0x300D,
    MATH_VMNMATCH = 0x300E,
    MATH_VNMATCH = 0x300F,
    MATH_ZEROSD = 0x3010,
    MATH_ZEROVEC = 0x3011,
    MATH_ZPIVOT = 0x3012,
    MATH_BADROOT = 0x3013,
};

/// Catalogue 4 (matrices): codes `MATX_INTERNAL` (0x4000) to `MATX_RESTORE` (0x4019).
enum MathCatalogue4 : std::uint16_t {
    MATX_INTERNAL = 0x4000,
    MATX_PICKRANGE = 0x4001,
    MATX_CONSTREF = 0x4002,
    MATX_CCONSTREF = 0x4003,
    MATX_MATSIZE = 0x4004,
    MATX_BOUNDS = 0x4005,
    MATX_ROWBOUNDS = 0x4006,
    MATX_COLBOUNDS = 0x4007,
    MATX_DIAGBOUNDS = 0x4008,
    MATX_CHANGEELEMENT = 0x4009,
    MATX_NPOINTS = 0x400A,
    MATX_NPOINTSBAND = 0x400B,
    MATX_BANDMATCH = 0x400C,
    MATX_NSQUARE = 0x400D,
    MATX_NOTSYM = 0x400E,
    MATX_NOTANTISYM = 0x400F,
    MATX_NOTHERM = 0x4010,
    MATX_NOTBANDED = 0x4011,
    MATX_NOTTRI = 0x4012,
    MATX_NOTTRIDIAG = 0x4013,
    MATX_MATVECPROD = 0x4014,
    MATX_VECMATPROD = 0x4015,
    MATX_MATMATPROD = 0x4016,
    MATX_WRONGNELEMENTS = 0x4017,
    MATX_LEADSUB = 0x4018,
    MATX_RESTORE = 0x4019,
};

/// A handler receives the record and the message arguments. It may return; the raising
/// operation then carries on as if its check had passed.
using MathErrorHandler = void (*)(const MathError& error, va_list args);

/// Raises `error` with the message arguments of its catalogue entry through the current
/// handler. Returns when the handler returns.
OBRIX_API void mathErrorRaise(MathError error, ...);
/// The shorthand: raises `code` with severity request MATH_DEFAULT and tag MATH_TAG_SHORTHAND.
/// `code` is an unsigned int (not 16 bits) so that the argument list starts after a type that
/// variadic calls do not promote.
OBRIX_API void mathErrorRaise(unsigned code, ...);
/// mathErrorRaise with an argument list.
OBRIX_API void mathErrorVRaise(MathError error, va_list args);

/// Installs `handler` as the process-wide handler and returns the previous one. A null
/// handler installs the default handler.
OBRIX_API MathErrorHandler setMathErrorHandler(MathErrorHandler handler);

/// The initial handler. Ignores code 0; reports "** ", the entry's message and ".\n" through
/// rptError/rptVError, as three separate reports (the default sink ends the first two with
/// a newline of its own); then "** Processing continues.\n" and returns, or "** Processing
/// terminated.\n" and aborts, by severity. An unregistered catalogue reports "Error number
/// 0x%hx." and aborts. Flushes stdout and stderr before it aborts, so that no report already
/// written is lost with the process.
OBRIX_API void defaultMathErrorHandler(const MathError& error, va_list args);

/// The exception thrown by throwingMathErrorHandler: what() is the formatted catalogue message
/// (for example "[INDEX: DoubleVec::operator[]]: Index (7) out of range [0->3]"), or "Error
/// number 0x...." when the code's catalogue is not registered.
class OBRIX_API MathException : public std::runtime_error {
public:
    /// An exception for `code` with the resolved `severity` (MATH_CONTINUE or MATH_TERMINATE).
    MathException(std::uint16_t code, std::uint32_t severity, const std::string& message);
    /// The raised code (catalogue in the high 4 bits, entry in the low 12).
    std::uint16_t code() const noexcept { return code_; }
    /// MATH_CONTINUE or MATH_TERMINATE: the raiser's request, or the entry's default when the
    /// raiser asked for MATH_DEFAULT; an unregistered catalogue counts as MATH_TERMINATE.
    std::uint32_t severity() const noexcept { return severity_; }

private:
    std::uint16_t code_;
    std::uint32_t severity_;
};

/// A ready handler that turns every error (but code 0, which it ignores) into a MathException,
/// whatever its severity, and reports nothing. Install it around C++ code that should recover
/// from a numeric error instead of ending the process; the raising operation is abandoned, so
/// its object is left as it was when the check failed. Never install it while C callers of the
/// library are on the stack: exceptions must not cross the C interface.
OBRIX_API void throwingMathErrorHandler(const MathError& error, va_list args);

/// A ready handler that reports exactly as defaultMathErrorHandler does, but always ends with
/// "** Processing continues.\n" and returns, whatever the severity. The raising operation then
/// carries on as if its check had passed: right for logging and for errors that only warn,
/// dangerous after an index or size error, whose operation goes on to touch memory it does not
/// own. Prefer throwingMathErrorHandler where recovery is wanted.
OBRIX_API void continuingMathErrorHandler(const MathError& error, va_list args);

/// The message format of `code` in the registered catalogues, or null when its catalogue is
/// not registered or the index is past the catalogue's end. Lets replacement handlers format.
OBRIX_API const char* mathErrorFormat(std::uint16_t code);
/// The default severity (MATH_CONTINUE or MATH_TERMINATE) of `code`; MATH_TERMINATE when its
/// catalogue is not registered.
OBRIX_API std::uint32_t mathErrorDefaultSeverity(std::uint16_t code);

/// Appends `catalogue` to the end of the global list unless that very object is already in
/// it. The catalogue is not copied: it must outlive its registration.
OBRIX_API void mathCatalogueRegister(MessageCatalogue* catalogue);
/// Unlinks the first catalogue whose number is `number`; nothing when none is registered.
OBRIX_API void mathCatalogueUnregister(std::uint32_t number);
/// The first registered catalogue (the head of the list), or null.
OBRIX_API const MessageCatalogue* mathCatalogueList();

/// The counted-registrar step shared by RWMATHInit, RWMATXInit and RWFACTInit: increments
/// `counter` and registers `catalogue` on the change from 0 to 1.
OBRIX_API void mathCatalogueAcquire(std::uint16_t& counter, MessageCatalogue* catalogue);
/// Decrements `counter` and unregisters catalogue `number` on the change from 1 to 0.
OBRIX_API void mathCatalogueRelease(std::uint16_t& counter, std::uint32_t number);

/// The counted registrar behind RWMATHInit, RWMATXInit and RWFACTInit, written once. Each
/// registrar class derives from it, names its catalogue's number and keeps its own 16-bit
/// instance counter in the library (counter() and catalogue() are defined there), so that the
/// units of every module that holds a registrar count in one place: the first construction
/// registers the catalogue, the last destruction unregisters it.
template <class Registrar>
class MathCatalogueRegistrar {
public:
    /// Counts this instance in; the first registers the catalogue.
    MathCatalogueRegistrar() { mathCatalogueAcquire(Registrar::counter(), Registrar::catalogue()); }
    /// Counts this instance out; the last unlinks the catalogue.
    ~MathCatalogueRegistrar() { mathCatalogueRelease(Registrar::counter(), Registrar::kNumber); }
    MathCatalogueRegistrar(const MathCatalogueRegistrar&) = delete;
    /// Does nothing: a registrar counts instances, it holds no value.
    MathCatalogueRegistrar& operator=(const MathCatalogueRegistrar&) { return *this; }
    /// The number of live instances.
    static std::uint16_t count() { return Registrar::counter(); }
};

/// Counted registrar of catalogue 3. Every unit that uses the numeric classes holds one
/// static instance (the headers provide it); the first construction registers the catalogue,
/// the last destruction unregisters it.
class OBRIX_API RWMATHInit : public MathCatalogueRegistrar<RWMATHInit> {
    friend class MathCatalogueRegistrar<RWMATHInit>;
    static constexpr std::uint32_t kNumber = 3;
    static std::uint16_t& counter();
    static MessageCatalogue* catalogue();
};

/// Counted registrar of catalogue 4 (matrix messages); works as RWMATHInit.
class OBRIX_API RWMATXInit : public MathCatalogueRegistrar<RWMATXInit> {
    friend class MathCatalogueRegistrar<RWMATXInit>;
    static constexpr std::uint32_t kNumber = 4;
    static std::uint16_t& counter();
    static MessageCatalogue* catalogue();
};

namespace obrix::detail {
///@{
/// Each unit that includes the numeric headers holds its own registrars, so the catalogues
/// are registered before any of that unit's static objects can raise.
static RWMATHInit mathCatalogueRegistrar;
static RWMATXInit matrixCatalogueRegistrar;
///@}
} // namespace obrix::detail

#endif
