/* Diagnostics of the C interface: the status codes that every container operation writes
   through its trailing `int *status`, their texts, and the indented debug printer. */
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

OBRIX_EXTERN_C_END

#endif
