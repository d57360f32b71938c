// This process's environment variables, as UTF-8 or wide text. On Windows the variables are
// read and written through the wide system calls, so non-ASCII values survive both ways.
#ifndef BASE_QVOS_ENV_H
#define BASE_QVOS_ENV_H

#include "Base/BaseExport.h"
#include "Base/qvString/CString.h"
#include "Base/qvUtil/Error.h"

namespace qvOS {

/// True and the value when name is set (also when set to ""); false (value untouched) when it
/// is unset or name is null or empty.
BASE_API bool GetEnv(const char* name, qvString::CString& value);
/// The same with wide name and value.
BASE_API bool GetEnv(const wchar_t* name, qvString::IString& value);
/// Sets (value non-null) or removes (value null) a variable of this process and of the
/// children it starts later. A null or empty name, or one containing '=', is InvalidArgument.
/// Not safe against other threads reading the environment at the same time.
BASE_API qvUtil::Error SetEnv(const char* name, const char* value);
/// The home directory of user (null or "" for the user running this process), without a
/// trailing separator; false (home untouched) when the system knows no such user or no home.
/// POSIX: HOME for the running user when it is set, else the user database (getpwnam_r /
/// getpwuid_r). Windows: USERPROFILE for the running user or one named as USERNAME names it
/// (letter case ignored); another user's home is the directory of that name beside it
/// (`C:\Users\<user>`) when it exists, since profiles of one machine share one parent.
BASE_API bool userHomeDirectory(const char* user, qvString::CString& home);

} // namespace qvOS

#endif
