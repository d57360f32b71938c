#include "tests/support/MathErrorCapture.h"

#include <cstdio>

namespace obrix::test {
namespace {

std::vector<RaisedMathError>& raised() {
    static std::vector<RaisedMathError> errors;
    return errors;
}

void recordingHandler(const MathError& error, va_list args) {
    std::string message;
    if (const char* format = mathErrorFormat(error.code)) {
        char buffer[512];
        va_list copy;
        va_copy(copy, args);
        std::vsnprintf(buffer, sizeof buffer, format, copy);
        va_end(copy);
        message = buffer;
    }
    raised().push_back({error.code, error.severity, error.tag, message});
}

} // namespace

MathErrorCapture::MathErrorCapture() : previous_(setMathErrorHandler(&recordingHandler)) {
    raised().clear();
}

MathErrorCapture::~MathErrorCapture() {
    setMathErrorHandler(previous_);
    raised().clear();
}

const std::vector<RaisedMathError>& MathErrorCapture::errors() const {
    return raised();
}

std::vector<std::string> MathErrorCapture::messages() const {
    std::vector<std::string> out;
    for (const auto& e : raised())
        out.push_back(e.message);
    return out;
}

std::vector<std::uint16_t> MathErrorCapture::codes() const {
    std::vector<std::uint16_t> out;
    for (const auto& e : raised())
        out.push_back(e.code);
    return out;
}

void MathErrorCapture::clear() {
    raised().clear();
}

} // namespace obrix::test
