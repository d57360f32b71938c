// The project-directory expansion on std::string, shared by the C functions of db_filename and
// VK_Filename, so that intermediate paths of any length are handled before one final check
// against the caller's buffer.
#ifndef OBRIX_UTIL_DB_FILENAME_INTERNAL_H
#define OBRIX_UTIL_DB_FILENAME_INTERNAL_H

#include <string>

namespace obrix::detail {

/// True when text fits a DB_PATH_BUFFER_SIZE buffer.
bool fitsPath(const std::string& text);
/// Copies text into out (DB_PATH_BUFFER_SIZE bytes); a text that does not fit is reported
/// with rptError naming who, and out becomes "".
void writePath(char* out, const std::string& text, const char* who);
/// path without one trailing separator, unless it is a root ("/", "C:\\"): the C runtime of
/// Windows finds no file at "dir\\", so every question to the file system goes without it.
std::string withoutTrailingSeparator(const std::string& path);
/// Db_make_dirname's answer for path, of any length.
std::string directoryPart(const std::string& path);
/// expand_filename's answer in result (unquoting name in place); false, with an rptError
/// report, for a relative name of a type without a directory.
bool expandPath(std::string& result, char* name, int type);

} // namespace obrix::detail

#endif
