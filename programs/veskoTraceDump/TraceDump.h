// The logic of veskoTraceDump: reads a trace ring file and prints it as the text log or as
// trace-event JSON that a trace viewer opens. main.cpp only parses the arguments.
#ifndef OBRIX_PROGRAMS_VESKOTRACEDUMP_TRACEDUMP_H
#define OBRIX_PROGRAMS_VESKOTRACEDUMP_TRACEDUMP_H

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "Base/qvUtil/Error.h"

namespace veskoTraceDump {

enum class Format {
    Text, ///< one record a line, as dumpLog writes them
    Json, ///< trace-event JSON: one instant event per line, the subsystem as its category
};

/// Writes the records of lines as a trace-event JSON document to out. Each line of the form
/// "YYYY/MM/DD hh:mm:ss <subsystem> message" becomes an instant event named by its message in
/// category subsystem, at its local time in microseconds since 1970; lines of one second are
/// spread 1 us apart so the viewer keeps their order. A line without that prefix keeps its
/// whole text, category "unknown", 1 us after the previous event. Invalid UTF-8 bytes become
/// U+FFFD, so the document is always valid JSON.
void writeTraceEvents(const std::vector<std::string>& lines, std::int64_t processId,
                      std::ostream& out);

/// Reads the ring file at path with VeskoTrace::recover and writes it to out in format. Notes
/// for the user (a torn last record, records overwritten before the read) go to notes, one
/// line each. Returns recover's error; the records before damage are written all the same.
qvUtil::Error printRing(const char* path, Format format, std::ostream& out, std::ostream& notes);

} // namespace veskoTraceDump

#endif
