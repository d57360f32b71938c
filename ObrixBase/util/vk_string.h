/* In-place editing of NUL-terminated 8-bit strings: stripping a character everywhere, at both
   ends or at the end, and tidying the text of a decimal number. Every routine ignores a null
   string. Two of them work through one process-wide scratch buffer that grows to the longest
   string seen and is kept for the life of the process: use them from one thread only. */
#ifndef OBRIX_UTIL_VK_STRING_H
#define OBRIX_UTIL_VK_STRING_H

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/// Removes every `c` from `s`, keeping the order of the other characters ("a,b,,c" without
/// ',' is "abc"). Uses the scratch buffer. O(n).
OBRIX_API void VK_string_stripchar(char* s, char c);
/// Writes the characters of `src` other than `c` into `dst`, terminated. `dst` is emptied
/// first, so a null or empty `src` leaves it empty; a null `dst` does nothing. `dst` must
/// hold `src`. O(n).
OBRIX_API void VK_string_strcpy_stripchar(char* dst, const char* src, char c);
/// Overwrites the trailing run of `c` with terminators, so that `s` ends in its last other
/// character ("xyy" without 'y' is "x"; a string of only `c` becomes empty). O(n).
OBRIX_API void VK_string_trailing_remove(char* s, char c);
/// Removes the leading and the trailing run of `c`, moving the rest to the start of `s`
/// ("  a b  " without ' ' is "a b"; a string of only `c` becomes empty). Uses the scratch
/// buffer. O(n).
OBRIX_API void VK_string_leading_trailing_remove(char* s, char c);
/// Tidies a decimal number's text: strips trailing '0's, writes "0" when nothing is left, and
/// appends a '0' when the text then ends in '.': "1.500" is "1.5", "2.000" is "2.0", "000" is
/// "0". It does not look for a decimal point first, so an integer text loses its trailing
/// zeros too ("100" is "1"). An empty text becomes "0" and a text that already ends in '.'
/// gains a '0': their buffers must have room for one more character. O(n).
OBRIX_API void VK_string_number_de_zero(char* s);

OBRIX_EXTERN_C_END

#endif
