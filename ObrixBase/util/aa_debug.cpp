// Status texts, error reports and the debug printer.
#include "ObrixBase/util/aa_debug.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Base/rpt/rpt.h"
#include "ObrixBase/ObrixBuildOptions.h"
#include "ObrixBase/memory/ma_memory_manager.h"
#include "ObrixBase/util/DS/ds_structures.h"

extern "C" {

// The numbering is stored by callers and in files: "UNKNOWN" keeps its place at 2 even though
// nothing in the library writes it.
const char* Vk_error_text[VK_STATUS_COUNT] = {
    "NO ERROR",
    "ARGUMENT ERROR",
    "UNKNOWN",
    "MEMORY FAULT",
    "INVALID FUNCTION",
    "INVALID DATA",
    "ALTERNATE RESULT",
    "INCOMPATIBILITY",
    "NO ANIMATION",
    "WALK ERROR",
    "WALK TERMINATED",
    "WALK INCOMPLETE",
    "ITEM NOT FOUND",
    "REMOVAL ERROR",
    "CANNOT SORT",
    "UNEXPECTED NULL STRUCTURE",
    "ITEM FILTERED",
    "UNEXPECTED SWITCH CASE",
    "STORE",
    "RETRIEVE",
    "WDL ERROR",
    "INVALID OPTIONS",
    "FILE ERROR",
    "PICKLIST ERROR",
    "ANIMTRON METHOD ERROR",
    "ALREADY EXISTS",
    "MISSING CURVE(S)",
    "MISSING SURFACE(S)",
    "MISSING SKELETON",
    "SECURITY",
    "ABORTED",
    "EXPRESSION ERROR",
};

int Vk_err_ignore = 0;

} // extern "C"

namespace {

// One debug destination. Named entries live in the debug file list for the life of the
// process, so that choosing a name again continues its file instead of truncating it.
enum EntryState : int {
    kOpen = 0,       // the stream is open now
    kNotCreated = 1, // to be created empty ("w") on the next print
    kClosed = 2,     // to be reopened for appending ("a") on the next print
    kCallerStream = 3,
};

struct DebugEntry {
    char* name; // owned; null for a caller's stream
    int state;
    FILE* stream;
};

// Process-wide printer state for the modelling thread.
int outputMode = AA_OUTPUT_STDERR;
DebugEntry* current = nullptr;
DS_Structure* fileList = nullptr;
int indentLevel = 0;

const char* orNull(const char* text) {
    return text ? text : "(null)";
}

int sameName(void* item, void* key) {
    auto* entry = static_cast<DebugEntry*>(item);
    if (!entry || !entry->name || !key)
        return 0;
    return std::strcmp(entry->name, static_cast<const char*>(key)) == 0;
}

// The entry being left: an open file is closed so that it can be read (and is appended to
// when chosen again); a caller's stream stays open, and its entry, which nothing else
// refers to, is released rather than leaked on every switch. Choosing the current file again
// also closes it: the next print reopens it for appending, so a caller can move the file
// away between two runs of output and get a fresh one under the old name.
void leave(DebugEntry* previous) {
    if (!previous)
        return;
    if (previous->state == kOpen) {
        if (previous->stream)
            std::fclose(previous->stream);
        previous->stream = nullptr;
        previous->state = kClosed;
    } else if (previous->state == kCallerStream && !previous->name) {
        MA_free(previous);
    }
}

void complain(const char* text) {
    AA_indent();
    AA_debug_print("%s", text);
}

void chooseFile(const char* name) {
    if (!name) {
        complain("Cannot open debug output file\n");
        return;
    }
    if (!fileList) {
        int st = 0;
        fileList = DS_create_type(2, &st, __LINE__, __FILE__);
        if (!fileList || !fileList->methods) {
            DS_destructor(&fileList, nullptr, nullptr, &st);
            complain("Cannot create debug file list\n");
            return;
        }
    }
    DS_Jump_table_s* m = fileList->methods;
    int st = 0;
    if (void* node = m->find(fileList, &sameName, const_cast<char*>(name), &st)) {
        auto* found = static_cast<DebugEntry*>(m->get_data(node, &st));
        DebugEntry* previous = current;
        current = found;
        outputMode = AA_OUTPUT_FILE;
        leave(previous);
        return;
    }
    auto* entry = static_cast<DebugEntry*>(MA_malloc(sizeof(DebugEntry), __LINE__, __FILE__));
    const size_t length = std::strlen(name) + 1;
    char* copy = entry ? static_cast<char*>(MA_malloc(length, __LINE__, __FILE__)) : nullptr;
    if (copy) {
        std::memcpy(copy, name, length);
        *entry = {copy, kNotCreated, nullptr};
    }
    if (!copy || !m->add(fileList, entry, &st)) {
        MA_free(copy);
        MA_free(entry);
        DebugEntry* previous = current;
        current = nullptr;
        leave(previous);
        complain("Cannot create debug file entry\n");
        return;
    }
    DebugEntry* previous = current;
    current = entry;
    outputMode = AA_OUTPUT_FILE;
    leave(previous);
}

void chooseStream(FILE* stream) {
    if (!stream) {
        if (current && current->state == kOpen)
            leave(current);
        return;
    }
    outputMode = AA_OUTPUT_STREAM;
    DebugEntry* previous = current;
    current = static_cast<DebugEntry*>(MA_malloc(sizeof(DebugEntry), __LINE__, __FILE__));
    if (current)
        *current = {nullptr, kCallerStream, stream};
    leave(previous);
    if (!current)
        complain("Cannot create debug file entry\n");
}

// The stream one print goes to; a named file is opened here, on its first print after being
// chosen, so that choosing a file and switching away without printing leaves no file behind.
FILE* destination() {
    switch (outputMode) {
    case AA_OUTPUT_STDOUT:
        return stdout;
    case AA_OUTPUT_STDERR:
        return stderr;
    case AA_OUTPUT_FILE:
        if (!current || !current->name)
            return stdout;
        if (current->state == kNotCreated || current->state == kClosed)
            current->stream = std::fopen(current->name, current->state == kNotCreated ? "w" : "a");
        current->state = kOpen;
        return current->stream;
    case AA_OUTPUT_STREAM:
        return current ? current->stream : stdout;
    default:
        return stderr;
    }
}

} // namespace

extern "C" {

const char* Vk_get_error_text(int code) {
    return code >= 0 && code < VK_STATUS_COUNT ? Vk_error_text[code] : nullptr;
}

int Vk_print_error(int code, const char* file, int line, const char* text) {
    // The exact build reads whatever lies beside the table; the checking build stops here,
    // where the caller's file and line still say who passed the code.
    if constexpr (OBRIX_CHECKED_INDEXING) {
        if (code < 0 || code >= VK_STATUS_COUNT) {
            rptError("Vk_print_error: status code %d is outside 0 to %d (file %s, line %d)", code,
                     VK_STATUS_COUNT - 1, orNull(file), line);
            std::fflush(stdout);
            std::fflush(stderr);
            std::abort();
        }
    }
    rptError("ERROR %s (file %s, line %d): %s", Vk_error_text[code], orNull(file), line,
             orNull(text));
    return 1;
}

int Vk_print_conditional(int code, const char* file, int line, const char* text) {
    return code ? Vk_print_error(code, file, line, text) : 1;
}

int AA_debug_print(const char* format, ...) {
    FILE* out = destination();
    // A file that could not be opened swallows the print instead of crashing the modeller.
    if (!out || !format)
        return -1;
    va_list args;
    va_start(args, format);
    int written = std::vfprintf(out, format, args);
    va_end(args);
    std::fflush(out);
    return written;
}

int AA_indent(void) {
    for (int i = 0; i < indentLevel; ++i)
        AA_debug_print("   ");
    return 1;
}

void AA_set_indent(int level) {
    if (level == -1)
        ++indentLevel;
    else if (level == -2)
        --indentLevel;
    else
        indentLevel = level;
}

int AA_get_indent(void) {
    return indentLevel;
}

void AA_set_print_out(AA_Debug_output mode, void* arg) {
    switch (mode) {
    case AA_OUTPUT_FILE:
        chooseFile(static_cast<const char*>(arg));
        return;
    case AA_OUTPUT_STREAM:
        chooseStream(static_cast<FILE*>(arg));
        return;
    default: {
        outputMode = mode;
        DebugEntry* previous = current;
        current = nullptr;
        leave(previous);
        return;
    }
    }
}

AA_Debug_output AA_get_print_out(void** arg) {
    if (outputMode == AA_OUTPUT_FILE && arg)
        *arg = current ? current->name : nullptr;
    return static_cast<AA_Debug_output>(outputMode);
}

int Aa_print_assert(const char* file, int line, const char* text) {
    AA_indent();
    return AA_debug_print("ASSERT (file %s, line %d): %s", orNull(file), line, orNull(text));
}

} // extern "C"
