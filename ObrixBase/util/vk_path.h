/* Small file-system helpers with a C interface: copy, delete and move answering 1 or 0, an
   existence test that tolerates drive roots and trailing separators, slash conversion, "~"
   expansion, and a directory reader of the opendir/readdir shape that numbers every entry it
   hands out from one process-wide counter. Single-threaded, like the rest of the library. */
#ifndef OBRIX_UTIL_VK_PATH_H
#define OBRIX_UTIL_VK_PATH_H

#include <stdbool.h>
#include <stddef.h>

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/** The longest path, in characters, that OB_FileExists and win32_opendir accept. */
#define VK_PATH_MAX 260
/** The longest user name, in characters, that ExpandPathname accepts after "~". */
#define VK_USER_NAME_MAX 1023
/** The size of win32_dirent's d_name: a name of VK_PATH_MAX characters and its terminator. */
#define VK_DIRENT_NAME_SIZE (VK_PATH_MAX + 1)

/** Copies file `from` to `to`; `overwrite` false keeps an existing `to` and fails. Returns 1
    on success, 0 on any failure (null arguments included); the reason is not kept. */
OBRIX_API int qvFileCopy(const char* from, const char* to, bool overwrite);
/** Deletes the file at `path`; 1 on success, 0 on failure or null. */
OBRIX_API int qvFileDelete(const char* path);
/** Moves (renames) `from` to `to`, as qvFileCopy for `overwrite`; 1 on success, else 0. */
OBRIX_API int qvFileMove(const char* from, const char* to, bool overwrite);

/** 0 when nothing exists at `path` (or it is null), else the file-type bits of its mode
    (mask 0xF000: 0x4000 a directory, 0x8000 a regular file). A trailing separator is dropped
    first unless it follows ':' or is the whole path; a bare drive "X:" is tested as "X:\".
    A path of more than VK_PATH_MAX characters whose trailing separator must be dropped is
    refused with an rptError report and gives 0. */
OBRIX_API int OB_FileExists(const char* path);

/** A new copy of `name` (C heap; the caller frees it) in which every '\' becomes '/' when
    `toForward` is non-zero, and every '/' becomes '\' when it is zero; the same on every
    system. Null for null. */
OBRIX_API char* convertFilename(const char* name, int toForward);

/** A new string (C heap; the caller frees it) with a leading "~" expanded to a home
    directory: "~" and "~/rest" use the user named by USERNAME (the running user when it is
    unset or empty), "~user/rest" that user. A user the system does not know, or a path without
    a leading "~", gives a plain copy. Null for null, and null with an rptError report when
    the user name is longer than VK_USER_NAME_MAX characters. */
OBRIX_API char* ExpandPathname(const char* path);

/** One entry handed out by win32_readdir. */
typedef struct win32_dirent {
    long d_ino;                       /**< entry number from the process-wide counter */
    unsigned short d_namlen;          /**< characters in d_name */
    char d_name[VK_DIRENT_NAME_SIZE]; /**< the name, without the directory */
} win32_dirent;

/** An open directory: its names read at open time into one block. */
typedef struct _dir_struc {
    char* start;         /**< the names, each terminated, one after the other (C heap) */
    char* curr;          /**< the next name to hand out; null at the end */
    long size;           /**< bytes in the block */
    long nfiles;         /**< names in the block */
    win32_dirent dirstr; /**< the entry the last read filled */
} _dir_struc;

/** Opens directory `path` (not changed; "X:" is read as "X:\") and reads all its names ("."
    and ".." included) at once. Null when `path` is null, longer than VK_PATH_MAX characters,
    not a directory, or cannot be listed. An existing directory listing nothing opens with
    no entries. Close with win32_closedir. */
OBRIX_API _dir_struc* win32_opendir(char* path);
/** The next entry, or null at the end or for null. The entry number comes from a counter
    shared by every directory of the process that grows with each read and never resets. The
    record is reused by the next read of `dir`. */
OBRIX_API win32_dirent* win32_readdir(_dir_struc* dir);
/** Starts `dir` over at its first name (null is ignored). Entry numbers keep growing. */
OBRIX_API void win32_rewinddir(_dir_struc* dir);
/** Frees `dir` and its names; returns 1 (also for null). */
OBRIX_API int win32_closedir(_dir_struc* dir);

OBRIX_EXTERN_C_END

#endif
