// qvUtil::Error: the value that the platform's and the library's services return instead of
// throwing. Code 0 means success; any other code carries a message for the user.
#ifndef BASE_QVUTIL_ERROR_H
#define BASE_QVUTIL_ERROR_H

#include "Base/BaseExport.h"
#include "Base/qvString/CString.h"

namespace qvUtil {

/// A result: code 0 is success, any other code an error with a message for the user.
/// Cheap to copy; compare with `isOk()` / `isError()` rather than with codes.
class BASE_API Error {
public:
    /// Success: code 0, empty message.
    Error() = default;
    /// An error with a printf-style message.
    Error(int code, const char* format, ...) BASE_PRINTF(3, 4);

    ///@{
    /// The code (0: success), the message ("" on success) and the two readings of the code.
    int code() const noexcept { return code_; }
    const qvString::CString& message() const noexcept { return message_; }
    bool isOk() const noexcept { return code_ == 0; }
    bool isError() const noexcept { return code_ != 0; }
    ///@}

    /// Same code and same message.
    friend bool operator==(const Error& a, const Error& b) {
        return a.code_ == b.code_ && a.message_ == b.message_;
    }

private:
    int code_ = 0;
    qvString::CString message_;
};

} // namespace qvUtil

#endif
