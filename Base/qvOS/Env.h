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

} // namespace qvOS

#endif
