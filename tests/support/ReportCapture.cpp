#include "tests/support/ReportCapture.h"

namespace obrix::test {
namespace {

std::vector<Report>& captured() {
    static std::vector<Report> reports;
    return reports;
}

void captureSink(int level, const char* text) {
    captured().push_back({level, text});
}

} // namespace

ReportCapture::ReportCapture() : previous_(rptSetSink(&captureSink)) {
    captured().clear();
}

ReportCapture::~ReportCapture() {
    rptSetSink(previous_);
    captured().clear();
}

const std::vector<Report>& ReportCapture::reports() const {
    return captured();
}

std::vector<std::string> ReportCapture::texts() const {
    std::vector<std::string> out;
    for (const auto& r : captured())
        out.push_back(r.text);
    return out;
}

std::string ReportCapture::joined() const {
    std::string out;
    for (const auto& r : captured())
        out += r.text;
    return out;
}

void ReportCapture::clear() {
    captured().clear();
}

} // namespace obrix::test
