/* The project-directory scheme: where the files of each data type live inside the current
   project, the project's location settings, and expand_filename, which turns a bare file name
   of a data type into a full path in the project (creating the directory on demand). Paths
   use the running system's separator ('\' with drive letters on Windows, '/' on POSIX).
   Process-wide settings without locks: use from the modelling thread only. */
#ifndef OBRIX_UTIL_DB_FILENAME_H
#define OBRIX_UTIL_DB_FILENAME_H

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/** The longest path, in characters, that a setting holds or expand_filename writes. */
#define DB_MAX_PATH 260
/** The size in bytes of every caller's `out` buffer of this family and of VK_Filename: a path
    of DB_MAX_PATH characters and its terminator. */
#define DB_PATH_BUFFER_SIZE (DB_MAX_PATH + 1)

/** Data type codes of VK_Filename and of the directory tables; codes without a name here
    (23, 28-36, 38-47) are used by the table alone. */
enum VK_DataType {
    ANIM_DATA = 0,
    PIX_DATA = 1,
    SDL_DATA = 2,
    WIRE_DATA = 3,
    MASK_DATA = 4,
    PIXAR_DATA = 5,
    DIR_DATA = 6,
    PROJ_DATA = 7,
    ANY_DATA = 8,
    MISC_DATA = 9,
    DEFAULT_DATA = 10,
    ANYDIR_DATA = 11,
    OPTION_DATA = 12,
    FBI_DATA = 13,
    BROWSE_DATA = 14,
    PLOT_DATA = 15,
    SLA_DATA = 16,
    SHADER_DATA = 17,
    TEXTURE_DATA = 18,
    TEXT_DATA = 19,
    STAGE_DATA = 20,
    SOURCEPIX_DATA = 21,
    DEBUG_DATA = 22,
    WINDOW_DATA = 24,
    RIB_DATA = 25,
    LIGHT_DATA = 26,
    ENVIRONMENT_DATA = 27,
    SOUND_DATA = 37,
};

/** One row of a directory table: a directory text and the data type whose files it holds.
    Both tables end in a row with a null `path` and type -1. */
typedef struct DB_Path {
    char* path; /**< default table: the directory below the project ("pix", "." ...);
                     path table: the full directory, ending in a separator (C heap) */
    int type;   /**< data type code (PIX_DATA 1, WIRE_DATA 3, ...) */
} DB_Path;

/** (Re)builds the path table from the default table and the current settings, freeing the
    strings of an earlier build. Per row: "." is `<project path><project name><sep>`; ".." is
    the project path alone; "../.." (Windows `..\..`) is `<working directory><sep>`; any other
    directory d is `<project path><project name><sep>d<sep>`, with "X:" of the current drive in
    front on Windows when the project path is not absolute. */
OBRIX_API void Db_init_paths(void);
/** The first path-table row of data type `type` (building the table if it was never built);
    null when no row has that type (5, 13, 14, 23, ...). The row stays valid until the next
    Db_init_paths. */
OBRIX_API DB_Path* Db_default_path(int type);
/** The path table, null before it is first built. */
OBRIX_API DB_Path* Db_get_paths(void);
/** The default table: 43 rows of (directory, type) in their fixed order, then the end row.
    The caller must not change it. */
OBRIX_API DB_Path* Db_get_default_paths(void);

/** Setters of the location settings. Each copies `text` (null counts as "") into a buffer of
    DB_PATH_BUFFER_SIZE bytes; a text longer than DB_MAX_PATH is refused with an rptError
    report and the old value is kept. They do not rebuild the path table: call Db_init_paths
    after changing the project. */
/**@{*/
OBRIX_API void Db_set_project_path(const char* text);
OBRIX_API void Db_set_project_name(const char* text);
OBRIX_API void Db_set_current_project_path(const char* text);
OBRIX_API void Db_set_current_project_name(const char* text);
/**@}*/
/** The working directory that the "../.." rows (types 22 and 36) resolve to. */
OBRIX_API void Db_set_al_cwd(const char* text);

/** The stored settings ("" until set). The pointers stay valid for the process and see later
    changes. */
/**@{*/
OBRIX_API char* Db_get_project_path(void);
OBRIX_API char* Db_get_project_name(void);
OBRIX_API char* Db_get_al_cwd(void);
/**@}*/
/** The project extension, null when unset. */
OBRIX_API char* Db_get_project_extension(void);
/** Frees the old extension and stores a copy of `extension` (C heap); null clears it. */
OBRIX_API void Db_set_project_extension(const char* extension);

/** `<current project path><current project name>`, or `<project path><project name>` when the
    former is empty, in a process-wide buffer that the next call overwrites. */
OBRIX_API char* Db_user_current_project_path(void);

/** Writes the directory part of `path` into `out` (DB_PATH_BUFFER_SIZE bytes): `path` cut just
    after its last separator at index 1 or more. Without one, a URL is cut after its last '/'
    and a local name keeps only its first character ("name" gives "n"). Returns 1; 0 when
    `path` or `out` is null, or when the result would not fit (reported with rptError; `out`
    is then ""). */
OBRIX_API int Db_make_dirname(char* out, const char* path);

/** Writes into `out` (DB_PATH_BUFFER_SIZE bytes; null does nothing) the full path of `name`
    for data type `type`:
    - a URL other than "file:" is copied unchanged;
    - a name starting with '"' first loses its leading and trailing quotes, in `name` itself;
    - an absolute name (a leading separator; on Windows also "X:" in front) is copied;
    - otherwise the directory of the type's path-table row is created when missing and `name`
      is appended to it, unless the two together exceed DB_MAX_PATH characters, in which
      case `out` holds the directory alone. A null `name` also gives the directory alone.
    A relative name of a type without a row, or a result longer than DB_MAX_PATH, is reported
    with rptError and leaves `out` empty. */
OBRIX_API void expand_filename(char* out, char* name, int type);

OBRIX_EXTERN_C_END

#endif
