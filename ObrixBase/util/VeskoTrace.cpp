#include "ObrixBase/util/VeskoTrace.h"

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <vector>

#include "Base/qvOS/DirectorySearch.h"
#include "Base/qvOS/Env.h"
#include "Base/qvOS/File.h"
#include "Base/qvOS/Filename.h"
#include "Base/qvOS/MemoryMappedFile.h"
#include "Base/qvOS/OSError.h"
#include "Base/qvOS/Process.h"
#include "Base/qvOS/Uuid.h"
#include "Base/rpt/rpt.h"

int VeskoTrace::level_ = 0;

namespace {

using Header = VeskoTrace::FileHeader;
static_assert(sizeof(Header) == 64, "the ring file's header is 64 bytes");

constexpr std::uint32_t HeaderBytes = sizeof(Header);
// No tail shorter than this is left at the end of the ring: it is also the longest record, so
// a record always fits in what remains.
constexpr std::uint32_t MinTail = 256;
// The line buffer holds the text and its zero; the prefix and message share it.
constexpr std::uint32_t LineLimit = VeskoTrace::MaxLineLength + 1;

const char* const SubsystemNames[] = {"Picking", "SPF", "UI", "UIFunction", "Undo", "Debug"};

std::uint64_t packPositions(std::int32_t start, std::uint32_t write) {
    return (std::uint64_t(std::uint32_t(start)) << 32) | write;
}
std::int32_t startOf(std::uint64_t positions) {
    return std::int32_t(std::uint32_t(positions >> 32));
}
std::uint32_t writeOf(std::uint64_t positions) {
    return std::uint32_t(positions);
}

std::uint32_t recordLength(const unsigned char* data, std::uint32_t position) {
    std::uint16_t length;
    std::memcpy(&length, data + position, sizeof length);
    return length;
}

// The header words another process reads while this one appends are stored with release
// order, so that a reader that sees a word also sees everything written before it.
void publish(std::uint64_t& word, std::uint64_t value) {
    std::atomic_ref<std::uint64_t>(word).store(value, std::memory_order_release);
}

// The writer's state. data and header point into the mapping; start, write and sequence are
// the writer's own copies of the header's words, so an append never reads the mapping back.
struct TraceState {
    qvOS::MemoryMappedFile ring;
    Header* header = nullptr;
    unsigned char* data = nullptr;
    std::uint32_t size = 0;
    std::int32_t start = -1; // oldest record, -1 while empty
    std::uint32_t write = 0;
    std::uint64_t sequence = 0;
    qvString::CString logDirectory;
    qvString::CString logTag;

    // Date and time of the last line, formatted once per second: localtime costs more than
    // the rest of a line.
    std::time_t stampSecond = -1;
    char stamp[48] = {};
    std::size_t stampLength = 0;
    char line[LineLimit] = {};

    ~TraceState() {
        // A trace from another static destructor after this one finds no ring.
        header = nullptr;
        data = nullptr;
    }
};
TraceState g;

void appendRecord(const char* text, std::uint32_t textLength) {
    // Text and zero rounded up to an even count, plus the length field.
    std::uint32_t length = ((textLength + 2) & ~1u) + 2;
    const std::uint32_t write = g.write;
    const std::uint32_t remaining = g.size - write; // never below MinTail, so length fits
    if (remaining - length < MinTail)
        length = remaining;

    // Drop from the old end every record that the new one covers. Records lie in ring order
    // from start to write, so they are a run beginning at start; coming round to write again
    // means every old record went.
    std::int32_t start = g.start;
    if (start >= 0) {
        const std::uint32_t end = write + length;
        while (std::uint32_t(start) >= write && std::uint32_t(start) < end) {
            std::uint32_t next = std::uint32_t(start) + recordLength(g.data, std::uint32_t(start));
            if (next == g.size)
                next = 0;
            if (next == write) {
                start = -1;
                break;
            }
            start = std::int32_t(next);
        }
    }

    Header* h = g.header;
    h->pendingPosition = write;
    h->pendingLength = length;
    h->pendingStart = start;
    publish(h->pendingSequence, g.sequence + 1);
    // The pending fields must reach memory before any byte of the record does.
    std::atomic_thread_fence(std::memory_order_release);

    const auto field = static_cast<std::uint16_t>(length);
    std::memcpy(g.data + write, &field, sizeof field);
    std::memcpy(g.data + write + 2, text, textLength);
    g.data[write + 2 + textLength] = 0;

    std::uint32_t next = write + length;
    if (next == g.size)
        next = 0;
    g.start = start < 0 ? std::int32_t(write) : start;
    g.write = next;
    publish(h->positions, packPositions(g.start, g.write));
    publish(h->sequence, ++g.sequence);
}

void addLine(VeskoTrace::Subsystem subsystem, const char* format, va_list args) {
    if (!g.data || !format)
        return;
    const std::time_t now = std::time(nullptr);
    if (now != g.stampSecond) {
        const std::tm* t = std::localtime(&now);
        int n = t ? std::snprintf(g.stamp, sizeof g.stamp, "%d/%02d/%02d %02d:%02d:%02d ",
                                  t->tm_year + 1900, t->tm_mon + 1, t->tm_mday, t->tm_hour,
                                  t->tm_min, t->tm_sec)
                  : -1;
        if (n < 0 || std::size_t(n) >= sizeof g.stamp)
            n = std::snprintf(g.stamp, sizeof g.stamp, "0/00/00 00:00:00 ");
        g.stampLength = std::size_t(n);
        g.stampSecond = now;
    }

    const int index = int(subsystem);
    const char* name =
        index >= 0 && index < int(std::size(SubsystemNames)) ? SubsystemNames[index] : "Unknown";
    char* out = g.line;
    std::memcpy(out, g.stamp, g.stampLength);
    out += g.stampLength;
    *out++ = '<';
    const std::size_t nameLength = std::strlen(name);
    std::memcpy(out, name, nameLength);
    out += nameLength;
    *out++ = '>';
    *out++ = ' ';
    const auto prefixLength = std::uint32_t(out - g.line);

    const std::uint32_t room = LineLimit - prefixLength;
    const int written = std::vsnprintf(out, room, format, args);
    if (written < 0)
        return;
    const std::uint32_t messageLength = std::min(std::uint32_t(written), room - 1);
    for (std::uint32_t i = 0; i < messageLength; ++i)
        if (out[i] == '\n')
            out[i] = ' ';
    appendRecord(g.line, prefixLength + messageLength);
}

// ---- reading a ring back ----

// The header's words that change while a ring is written; two equal snapshots around a copy
// of the data area mean the copy is one consistent state.
struct Snapshot {
    std::uint64_t sequence;
    std::uint64_t pendingSequence;
    std::uint64_t positions;
    std::uint32_t pendingPosition;
    std::uint32_t pendingLength;
    std::int32_t pendingStart;
    bool operator==(const Snapshot&) const = default;
};

// Reads the words in the order opposite to the writer's stores (sequence is stored last and
// read first), from a mapping that another process may be writing.
Snapshot loadLive(const Header* h) {
    auto load = [](const std::uint64_t& word) {
        return std::atomic_ref<std::uint64_t>(const_cast<std::uint64_t&>(word))
            .load(std::memory_order_acquire);
    };
    Snapshot s;
    s.sequence = load(h->sequence);
    s.pendingSequence = load(h->pendingSequence);
    s.positions = load(h->positions);
    s.pendingPosition = h->pendingPosition;
    s.pendingLength = h->pendingLength;
    s.pendingStart = h->pendingStart;
    return s;
}

Snapshot loadCopy(const Header& h) {
    return {h.sequence,        h.pendingSequence, h.positions,
            h.pendingPosition, h.pendingLength,   h.pendingStart};
}

qvUtil::Error damaged(const char* name, const char* what, std::uint64_t offset) {
    return qvUtil::Error(qvOS::OSError::Failed, "Trace ring %s is damaged: %s at offset %llu", name,
                         what, static_cast<unsigned long long>(offset));
}

// Checks the fields that never change after the ring is made; fills header from bytes.
qvUtil::Error checkHeader(const char* name, const void* bytes, std::uint64_t size, Header& header) {
    if (!bytes || size < HeaderBytes)
        return qvUtil::Error(qvOS::OSError::InvalidArgument,
                             "%s is not a trace ring: shorter than its header", name);
    std::memcpy(&header, bytes, HeaderBytes);
    if (header.magic != VeskoTrace::FileMagic)
        return qvUtil::Error(qvOS::OSError::InvalidArgument, "%s is not a trace ring", name);
    if (header.version != VeskoTrace::FileVersion)
        return qvUtil::Error(qvOS::OSError::InvalidArgument,
                             "Trace ring %s has format version %u; this library reads version %u",
                             name, unsigned(header.version), unsigned(VeskoTrace::FileVersion));
    if (header.headerBytes != HeaderBytes || header.ringBytes < 512 || header.ringBytes % 256 ||
        header.ringBytes > VeskoTrace::MaxRingBytes || size < HeaderBytes + header.ringBytes)
        return damaged(name, "the header's sizes do not match the file", 0);
    return {};
}

// Hands back the records of one consistent state: data is the data area, ringBytes long.
qvUtil::Error walkRing(const char* name, const unsigned char* data, std::uint32_t ringBytes,
                       const Snapshot& s, VeskoTrace::TextCallback callback, void* context,
                       VeskoTrace::RecoverResult& result) {
    std::int64_t start = startOf(s.positions);
    const std::uint32_t write = writeOf(s.positions);
    result.sequence = s.sequence;
    if (s.pendingSequence == s.sequence + 1) {
        // An append was under way: either the positions still show the state before it (the
        // record is torn, and the records it covers may be overwritten already) or they were
        // published (the record is whole; only the sequence was not raised yet).
        std::uint32_t after = s.pendingPosition + s.pendingLength;
        if (after == ringBytes)
            after = 0;
        if (write == s.pendingPosition) {
            result.tornRecord = true;
            start = s.pendingStart;
        } else if (write == after && s.pendingPosition < ringBytes &&
                   s.pendingLength <= ringBytes - s.pendingPosition) {
            result.sequence += 1;
        } else {
            return damaged(name, "the append under way does not match the positions", 16);
        }
    }
    // start is -1 when the ring is empty, or when a torn record was to replace every record.
    if (start < -1 || start >= std::int64_t(ringBytes) || (start >= 0 && start % 2) ||
        write >= ringBytes || write % 2)
        return damaged(name, "positions outside the ring", 16);
    if (start < 0)
        return {};

    // Each record needs at least 4 bytes; more steps than that means the chain loops.
    const std::uint64_t maxRecords = ringBytes / 4;
    auto position = std::uint32_t(start);
    do {
        const std::uint32_t length = recordLength(data, position);
        if (length < 4 || length % 2 || length > ringBytes - position)
            return damaged(name, "a record length", HeaderBytes + position);
        const char* text = reinterpret_cast<const char*>(data + position + 2);
        if (!std::memchr(text, 0, length - 2))
            return damaged(name, "a record without its terminating zero", HeaderBytes + position);
        if (result.records == maxRecords)
            return damaged(name, "the records never reach the write position", HeaderBytes + start);
        if (callback)
            callback(context, text);
        ++result.records;
        position += length;
        if (position == ringBytes)
            position = 0;
    } while (position != write);
    return {};
}

} // namespace

bool VeskoTrace::initialize(const char* directory, std::uint64_t size, int level) {
    if (!directory || size > MaxRingBytes)
        return false;
    const std::uint64_t ringBytes = size < 512 ? 512 : (size + 255) / 256 * 256;
    const qvString::CString name =
        qvString::CString::format("VeskoTrace-%s.dat", qvOS::Uuid().asString().c_str());
    qvOS::MemoryMappedFile file;
    if (file.createFile(qvOS::Filename::join(directory, name), HeaderBytes + ringBytes).isError())
        return false;

    // The file comes zero-filled; the writer's process and the empty positions complete it.
    auto* header = static_cast<Header*>(file.data());
    header->magic = FileMagic;
    header->version = FileVersion;
    header->headerBytes = HeaderBytes;
    header->ringBytes = std::uint32_t(ringBytes);
    header->writerProcess = qvOS::ProcessManager::currentId();
    publish(header->positions, packPositions(-1, 0));

    level_ = 0;
    g.ring = std::move(file);
    g.header = static_cast<Header*>(g.ring.data());
    g.data = static_cast<unsigned char*>(g.ring.data()) + HeaderBytes;
    g.size = std::uint32_t(ringBytes);
    g.start = -1;
    g.write = 0;
    g.sequence = 0;
    level_ = level;
    return true;
}

void VeskoTrace::initLog(const char* directory, const char* tag) {
    g.logDirectory = directory;
    g.logTag = tag;
}

const qvString::CString& VeskoTrace::ringFile() {
    return g.ring.path();
}

void VeskoTrace::trace1(Subsystem subsystem, const char* format, ...) {
    if (level_ < 1)
        return;
    va_list args;
    va_start(args, format);
    addLine(subsystem, format, args);
    va_end(args);
}

void VeskoTrace::trace2(Subsystem subsystem, const char* format, ...) {
    if (level_ < 2)
        return;
    va_list args;
    va_start(args, format);
    addLine(subsystem, format, args);
    va_end(args);
}

void VeskoTrace::trace3(Subsystem subsystem, const char* format, ...) {
    if (level_ < 3)
        return;
    va_list args;
    va_start(args, format);
    addLine(subsystem, format, args);
    va_end(args);
}

void VeskoTrace::trace4(Subsystem subsystem, const char* format, ...) {
    if (level_ < 4)
        return;
    va_list args;
    va_start(args, format);
    addLine(subsystem, format, args);
    va_end(args);
}

void VeskoTrace::dump(TextCallback callback, void* context) {
    if (!callback || !g.data || g.start < 0)
        return;
    // A full ring has start == write, so the first record is handed over before the test.
    auto position = std::uint32_t(g.start);
    do {
        callback(context, reinterpret_cast<const char*>(g.data + position + 2));
        position += recordLength(g.data, position);
        if (position == g.size)
            position = 0;
    } while (position != g.write);
}

void VeskoTrace::dumpLog() {
    if (level_ <= 0 || g.logDirectory.empty())
        return;
    qvString::CString user;
    if (!qvOS::GetEnv("USERNAME", user) || user.empty())
        if (!qvOS::GetEnv("USER", user) || user.empty())
            user = "Unknown User";

    // The stamp counts months from 0, unlike the lines; log names in the field are sorted
    // and matched by it, so it stays.
    const std::time_t now = std::time(nullptr);
    std::tm t{};
    if (const std::tm* local = std::localtime(&now))
        t = *local;
    const qvString::CString stamp = qvString::CString::format(
        "%02d%02d%04d%02d%02d", t.tm_mon, t.tm_mday, t.tm_year + 1900, t.tm_hour, t.tm_min);
    const qvString::CString path = qvOS::Filename::join(
        g.logDirectory, qvString::CString::format("VeskoTraceLog-%s-%s-%s.log", user.c_str(),
                                                  g.logTag.c_str(), stamp.c_str()));

    const qvUtil::Error made = qvOS::Filename::makeDir(g.logDirectory);
    if (made.isError()) {
        rptError("The trace log was not written: %s", made.message().c_str());
        return;
    }
    // The path is UTF-8; going through a u8 path keeps non-ASCII user names intact on Windows.
    std::ofstream out(std::filesystem::path(std::u8string(path.begin(), path.end())));
    if (!out) {
        rptError("The trace log %s could not be created", path.c_str());
        return;
    }
    dump([](void* stream,
            const char* text) { *static_cast<std::ofstream*>(stream) << text << '\n'; },
         &out);
    out.close();
    if (!out)
        rptError("The trace log %s could not be written completely", path.c_str());
}

void VeskoTrace::finalize() {
    level_ = 0;
}

qvUtil::Error VeskoTrace::removeOldRings(const char* directory, int keep, int* removed) {
    int localRemoved = 0;
    int& count = removed ? *removed : localRemoved;
    count = 0;
    if (!directory || keep < 0)
        return qvUtil::Error(qvOS::OSError::InvalidArgument, "Cannot remove old trace rings: %s",
                             directory ? "the number to keep is negative" : "no directory");
    qvOS::DirectorySearch search;
    if (qvUtil::Error opened = search.open(directory); opened.isError())
        return opened;
    struct Ended {
        qvString::CString path;
        std::int64_t modified;
    };
    std::vector<Ended> ended;
    for (qvString::CString name; search.next(name);) {
        if (name.size() < 16 || name.compare(0, 11, "VeskoTrace-") != 0 ||
            name.compare(name.size() - 4, 4, ".dat") != 0)
            continue;
        const qvString::CString path = qvOS::Filename::join(directory, name);
        qvOS::FileInfo info;
        qvOS::MemoryMappedFile file;
        Header header;
        if (path == g.ring.path() || qvOS::File::query(path, info).isError() ||
            file.openFile(path, false).isError() ||
            checkHeader(path.c_str(), file.data(), file.size(), header).isError() ||
            qvOS::ProcessManager::isAlive(header.writerProcess))
            continue;
        ended.push_back({path, info.modified});
    }
    search.close();
    std::sort(ended.begin(), ended.end(),
              [](const Ended& a, const Ended& b) { return a.modified > b.modified; });
    qvUtil::Error first;
    for (std::size_t i = static_cast<std::size_t>(keep); i < ended.size(); ++i) {
        if (qvUtil::Error deleted = qvOS::fileDelete(ended[i].path); deleted.isError()) {
            if (first.isOk())
                first = deleted;
        } else {
            ++count;
        }
    }
    return first;
}

qvUtil::Error VeskoTrace::recover(const char* path, TextCallback callback, void* context,
                                  RecoverResult* result) {
    RecoverResult local;
    RecoverResult& r = result ? *result : local;
    r = RecoverResult();
    if (!path)
        return qvUtil::Error(qvOS::OSError::InvalidArgument, "No trace ring file was named");
    qvOS::MemoryMappedFile file;
    if (qvUtil::Error opened = file.openFile(path, false); opened.isError())
        return opened;

    const auto* bytes = static_cast<const unsigned char*>(file.data());
    Header header;
    if (qvUtil::Error checked = checkHeader(path, bytes, file.size(), header); checked.isError())
        return checked;
    r.writerProcess = header.writerProcess;

    // A live writer may append while the data area is copied: the copy counts only when the
    // header did not move across it.
    const auto* live = reinterpret_cast<const Header*>(bytes);
    std::vector<unsigned char> copy(header.ringBytes);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const Snapshot before = loadLive(live);
        std::memcpy(copy.data(), bytes + HeaderBytes, copy.size());
        std::atomic_thread_fence(std::memory_order_acquire);
        if (loadLive(live) == before) {
            qvUtil::Error walked =
                walkRing(path, copy.data(), header.ringBytes, before, callback, context, r);
            r.writerProcess = header.writerProcess;
            return walked;
        }
    }
    return qvUtil::Error(qvOS::OSError::Failed,
                         "Trace ring %s kept changing while it was read; try again", path);
}

qvUtil::Error VeskoTrace::recover(const void* bytes, std::uint64_t size, TextCallback callback,
                                  void* context, RecoverResult* result) {
    RecoverResult local;
    RecoverResult& r = result ? *result : local;
    r = RecoverResult();
    Header header;
    if (qvUtil::Error checked = checkHeader("image", bytes, size, header); checked.isError())
        return checked;
    qvUtil::Error walked = walkRing("image", static_cast<const unsigned char*>(bytes) + HeaderBytes,
                                    header.ringBytes, loadCopy(header), callback, context, r);
    r.writerProcess = header.writerProcess;
    return walked;
}
