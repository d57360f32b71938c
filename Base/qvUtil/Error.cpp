#include "Base/qvUtil/Error.h"

namespace qvUtil {

Error::Error(int code, const char* format, ...) : code_(code) {
    va_list args;
    va_start(args, format);
    message_ = qvString::CString::vformat(format, args);
    va_end(args);
}

} // namespace qvUtil
