// Scoped capture of the numeric error handler: while a MathErrorCapture lives, every raised
// MathError is recorded (code, severity request, tag and the formatted catalogue message) and
// the handler returns, so the raising operation carries on. The previous handler comes back
// when the capture dies.
#ifndef OBRIX_TESTS_SUPPORT_MATHERRORCAPTURE_H
#define OBRIX_TESTS_SUPPORT_MATHERRORCAPTURE_H

#include <cstdint>
#include <string>
#include <vector>

#include "ObrixBase/math/MathError.h"

namespace obrix::test {

struct RaisedMathError {
    std::uint16_t code;
    std::uint32_t severity;
    std::uint16_t tag;
    /// The catalogue entry's format applied to the arguments (empty for an unknown code).
    std::string message;
};

class MathErrorCapture {
public:
    MathErrorCapture();
    ~MathErrorCapture();
    MathErrorCapture(const MathErrorCapture&) = delete;
    MathErrorCapture& operator=(const MathErrorCapture&) = delete;

    const std::vector<RaisedMathError>& errors() const;
    /// The messages of all errors, in order.
    std::vector<std::string> messages() const;
    /// The codes of all errors, in order.
    std::vector<std::uint16_t> codes() const;
    void clear();

private:
    MathErrorHandler previous_;
};

} // namespace obrix::test

#endif
