// VeskoTrace: the always-on flight recorder. Trace lines go into a ring kept in a memory-mapped
// file, so the latest history survives a crash of the process; dumpLog writes the ring out as a
// text log, and recover reads back a ring file that another process (dead or alive) left.
#ifndef OBRIX_UTIL_VESKOTRACE_H
#define OBRIX_UTIL_VESKOTRACE_H

#include <cstdint>

#include "Base/BaseExport.h"
#include "Base/qvUtil/Error.h"
#include "ObrixBase/ObrixExport.h"

/// Process-wide trace log for the modelling thread. Nothing is locked: the line buffer is one
/// buffer for the process, so trace from one thread at a time.
///
/// A ring file holds a 64-byte FileHeader followed by the ring's data area. Each record in the
/// data area is a 16-bit length (the whole record in bytes, this field included, always even),
/// then the line's text and its terminating zero. A record never wraps: when fewer than 256
/// bytes would be left after it at the end of the area, it is stretched to take them all.
class OBRIX_API VeskoTrace {
public:
    /// The subsystem named in each line ("Picking", "SPF", "UI", "UIFunction", "Undo", "Debug").
    enum Subsystem { Picking = 0, SPF = 1, UI = 2, UIFunction = 3, Undo = 4, Debug = 5 };

    /// The file format: the header at offset 0, the data area right behind it. Native byte
    /// order (little-endian on every supported system).
    ///
    /// An append first records the position, length and the start it will leave (the records it
    /// overwrites dropped) in the pending fields, then sets pendingSequence to sequence + 1,
    /// writes the record, publishes positions in one 64-bit store and last raises sequence. A
    /// reader that finds pendingSequence == sequence + 1 and the write position still at
    /// pendingPosition knows that the record there is torn and starts from pendingStart.
    struct FileHeader {
        std::uint32_t magic;           ///< FileMagic
        std::uint16_t version;         ///< FileVersion
        std::uint16_t headerBytes;     ///< 64: where the data area begins
        std::uint32_t ringBytes;       ///< size of the data area: 512 or more, a multiple of 256
        std::uint32_t reserved0;       ///< 0
        std::uint64_t positions;       ///< (start as int32, -1 while empty) << 32 | write position
        std::uint64_t sequence;        ///< records appended over the ring's life
        std::uint64_t pendingSequence; ///< sequence + 1 while an append is under way
        std::uint32_t pendingPosition; ///< where the record under way goes
        std::uint32_t pendingLength;   ///< its length, stretched where it is
        std::int32_t pendingStart;     ///< the start once the records it covers are dropped
        std::uint32_t reserved1;       ///< 0
        std::int64_t writerProcess;    ///< id of the process that made the ring
    };
    // Enumerators rather than static data: callers may bind them to references (as test macros
    // do) without needing a definition exported from the shared library.
    enum : std::uint32_t {
        FileMagic = 0x43525456, ///< the bytes "VTRC"
        FileVersion = 1,
        /// The largest data area initialize accepts (positions are 32-bit in the header).
        MaxRingBytes = 1u << 30,
        /// Longest line, prefix included, without its terminating zero.
        MaxLineLength = 252,
    };

    /// What recover found besides the records.
    struct RecoverResult {
        std::uint64_t records = 0; ///< whole records handed to the callback
        /// Records appended over the ring's life; the last one handed back is number
        /// sequence - 1, so sequence - records were dropped (overwritten) before the read.
        std::uint64_t sequence = 0;
        /// A record was being appended when the file was read (the writer died in the middle
        /// of it, or is still writing it); it is not handed back.
        bool tornRecord = false;
        std::int64_t writerProcess = 0; ///< the process id stored by the ring's maker
    };

    /// Receives one record's text (zero-terminated, without a newline).
    using TextCallback = void (*)(void* context, const char* text);

    /// Creates a new ring file "VeskoTrace-<uuid>.dat" in directory with a data area of 512
    /// bytes when size is below 512, else size rounded up to a multiple of 256, and sets the
    /// level. Returns false, changing nothing, when directory is null, size exceeds
    /// MaxRingBytes or the file cannot be created. A ring made earlier is released (its file
    /// stays on disk) and the new one starts empty.
    static bool initialize(const char* directory, std::uint64_t size, int level);
    /// Stores the directory and tag that dumpLog uses (null stores ""). The directory need not
    /// exist yet.
    static void initLog(const char* directory, const char* tag);
    /// The path of the current ring file, "" before the first successful initialize.
    static const qvString::CString& ringFile();

    /// Level > 0. One load and one compare: guard a trace call whose arguments cost something.
    static bool enabled() noexcept { return level_ > 0; }
    /// Level >= n.
    static bool enabled(int n) noexcept { return level_ >= n; }

    /// When the level is at least 1 (2, 3, 4 for trace2, trace3, trace4), appends the line
    /// "YYYY/MM/DD hh:mm:ss <subsystem> " + the formatted message. The message is cut so that
    /// the line holds at most MaxLineLength bytes; each newline in it becomes a space (a
    /// carriage return stays). A message whose formatting fails is dropped. Allocates nothing.
    static void trace1(Subsystem subsystem, const char* format, ...) BASE_PRINTF(2, 3);
    /// See trace1; needs level 2.
    static void trace2(Subsystem subsystem, const char* format, ...) BASE_PRINTF(2, 3);
    /// See trace1; needs level 3.
    static void trace3(Subsystem subsystem, const char* format, ...) BASE_PRINTF(2, 3);
    /// See trace1; needs level 4.
    static void trace4(Subsystem subsystem, const char* format, ...) BASE_PRINTF(2, 3);

    /// Calls callback with each record's text, oldest first. Nothing without a ring or with a
    /// null callback. The callback must not trace.
    static void dump(TextCallback callback, void* context);
    /// Writes the ring, one record a line, to "VeskoTraceLog-<user>-<tag>-<stamp>.log" in the
    /// log directory, creating the directory when missing. user is $USERNAME, else $USER (an
    /// empty value counts as unset), else "Unknown User"; stamp is MMDDYYYYhhmm of local time
    /// with the month counted from 0 (January is 00). An existing file of that name is
    /// replaced, so a second dump within the same minute overwrites the first. Does nothing
    /// when the level is 0 or initLog gave no directory; failures are reported by rptError.
    static void dumpLog();
    /// Sets the level to 0. The ring and its file stay as they are (dump still reads them).
    static void finalize();

    /// Deletes old ring files from directory, since every initialize leaves a new one behind:
    /// of the rings whose writing process has ended, the keep most recently written stay (they
    /// hold what led up to a crash) and the others go. Rings of running processes, the current
    /// ring and files that are no readable ring stay untouched. Sets *removed (may be null) to
    /// the number deleted. Errors: null directory or negative keep (InvalidArgument), a
    /// directory that cannot be listed, or the first file that cannot be deleted (the others
    /// are still tried).
    static qvUtil::Error removeOldRings(const char* directory, int keep, int* removed = nullptr);

    /// Reads the ring file at path, written by any process (ended or still tracing), and
    /// hands each whole record to callback, oldest first; a record that was being appended is
    /// skipped and reported in result (may be null). A ring that changes while it is copied is
    /// read again, up to 100 times. Errors: the file cannot be opened, is no ring file, has
    /// another version, or is damaged (the records before the damage are handed back and the
    /// message gives the offset). Never changes the file.
    static qvUtil::Error recover(const char* path, TextCallback callback, void* context,
                                 RecoverResult* result = nullptr);
    /// The same over a copy of a ring file's bytes in memory (size bytes at bytes).
    static qvUtil::Error recover(const void* bytes, std::uint64_t size, TextCallback callback,
                                 void* context, RecoverResult* result = nullptr);

private:
    static int level_;
};

#endif
