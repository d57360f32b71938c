/* Diagnostics of the C interface: the status codes that every container operation writes
   through its trailing `int *status`, their texts, the error reports built from them, and the
   indented debug printer that the rest of the library uses for developer output. Everything
   here is process-wide state for the single modelling thread. */
#ifndef OBRIX_UTIL_AA_DEBUG_H
#define OBRIX_UTIL_AA_DEBUG_H

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/** Status codes. The numbering is fixed: it indexes the table of texts and callers store it. */
typedef enum VK_Status {
    VK_NO_ERROR = 0,
    VK_ARGUMENT_ERROR = 1, /**< a required argument was null */
    VK_UNKNOWN = 2,
    VK_MEMORY_FAULT = 3,     /**< an allocation failed */
    VK_INVALID_FUNCTION = 4, /**< a negative or already used registration identifier */
    VK_INVALID_DATA = 5,     /**< an incomplete method table at registration */
    VK_ALTERNATE_RESULT = 6,
    VK_INCOMPATIBILITY = 7, /**< structures of different kinds or comparators */
    VK_NO_ANIMATION = 8,
    VK_WALK_ERROR = 9, /**< a match callback was given a null item or key */
    VK_WALK_TERMINATED = 10,
    VK_WALK_INCOMPLETE = 11,
    VK_ITEM_NOT_FOUND = 12, /**< an identifier, function or member was not found */
    VK_REMOVAL_ERROR = 13,
    VK_CANNOT_SORT = 14, /**< no comparator to sort by */
    VK_UNEXPECTED_NULL_STRUCTURE = 15,
    VK_ITEM_FILTERED = 16, /**< the structure's filter rejected the item */
    VK_UNEXPECTED_SWITCH_CASE = 17,
    VK_STORE = 18,
    VK_RETRIEVE = 19,
    VK_WDL_ERROR = 20,
    VK_INVALID_OPTIONS = 21,
    VK_FILE_ERROR = 22,
    VK_PICKLIST_ERROR = 23,
    VK_ANIMTRON_METHOD_ERROR = 24,
    VK_ALREADY_EXISTS = 25,
    VK_MISSING_CURVES = 26,
    VK_MISSING_SURFACES = 27,
    VK_MISSING_SKELETON = 28,
    VK_SECURITY = 29,
    VK_ABORTED = 30,
    VK_EXPRESSION_ERROR = 31,
    VK_STATUS_COUNT = 32
} VK_Status;

/** Writes `code` through a status pointer that may be null. */
#define VK_SET_STATUS(status, code)                                                                \
    do {                                                                                           \
        if (status)                                                                                \
            *(status) = (code);                                                                    \
    } while (0)

/** The texts of the status codes, indexed by code ("NO ERROR" ... "EXPRESSION ERROR").
    The table is writable so that an application may localise it; the library only reads it.
    Callers index it with 0 to VK_STATUS_COUNT - 1 only. */
OBRIX_API extern const char* Vk_error_text[VK_STATUS_COUNT];

/** Kept for callers that mark errors as ignored; initially 0. The library never reads or
    writes it. */
OBRIX_API extern int Vk_err_ignore;

/** The text of status `code`, or null when `code` is outside 0 to 31. A checked reading of
    Vk_error_text for callers that hold codes from elsewhere. */
OBRIX_API const char* Vk_get_error_text(int code);

/** Reports "ERROR <code text> (file <file>, line <line>): <text>" through rptError.
    `code` indexes the text table unchecked: pass 0 to 31 only. A library built with
    OBRIX_CHECKED_INDEXING (ObrixBuildOptions.h) instead reports "Vk_print_error: status code
    <code> is outside 0 to 31 (file <file>, line <line>)" and aborts. Null `file` or `text`
    print as "(null)". Always returns 1. */
OBRIX_API int Vk_print_error(int code, const char* file, int line, const char* text);

/** Vk_print_error when `code` is non-zero; reports nothing for 0. Always returns 1. */
OBRIX_API int Vk_print_conditional(int code, const char* file, int line, const char* text);

/** Where the debug printer writes. */
typedef enum AA_Debug_output {
    AA_OUTPUT_STDOUT = 0, /**< standard output */
    AA_OUTPUT_STDERR = 1, /**< standard error, the initial destination */
    AA_OUTPUT_FILE = 2,   /**< a named file: created empty on its first print, appended after */
    AA_OUTPUT_STREAM = 3  /**< a stdio stream that the caller opened and keeps owning */
} AA_Debug_output;

/** printf-style print to the current destination, which is flushed afterwards. Returns what
    the C runtime's formatted print returned: the number of characters, or a negative value.
    In file mode the file is opened lazily here: "w" on the first print after it was first
    chosen, "a" after it was switched away from and chosen again. */
OBRIX_API int AA_debug_print(const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

/** Prints three spaces per indent level through AA_debug_print; nothing when the level is
    below 1. Returns 1. */
OBRIX_API int AA_indent(void);

/** -1 raises the indent level by one, -2 lowers it by one, any other value becomes the level.
    The level is not bounded: a negative level is kept and prints no indentation. */
OBRIX_API void AA_set_indent(int level);

/** The current indent level (which may be negative). */
OBRIX_API int AA_get_indent(void);

/** Chooses the debug destination. AA_OUTPUT_FILE takes the file name (`const char *`) in
    `arg`: a name chosen before continues its file (appended), a new name is created empty on
    its first print, and a name never printed to leaves no file behind. AA_OUTPUT_STREAM takes
    the caller's open `FILE *`, which is never closed here. Other modes ignore `arg`. The file
    being left is closed, so the file can be read while another destination is current.
    A null file name prints "Cannot open debug output file\n" to the old destination and
    changes nothing; a null stream keeps the mode but closes the file being left. Files chosen
    here stay known (and their names held) until the process ends. */
OBRIX_API void AA_set_print_out(AA_Debug_output mode, void* arg);

/** The current mode. In file mode, when `arg` is not null, stores the current file's name
    through it (null when there is none); in other modes `arg` is left untouched. The name
    stays owned by the debug printer. */
OBRIX_API AA_Debug_output AA_get_print_out(void** arg);

/** Indents, then prints "ASSERT (file <file>, line <line>): <text>" with no newline added.
    Returns AA_debug_print's result. */
OBRIX_API int Aa_print_assert(const char* file, int line, const char* text);

OBRIX_EXTERN_C_END

#endif
