// Scoped capture of user reports: while a ReportCapture lives, every rpt* report is recorded
// instead of printed, and the previous sink comes back when it dies.
#ifndef OBRIX_TESTS_SUPPORT_REPORTCAPTURE_H
#define OBRIX_TESTS_SUPPORT_REPORTCAPTURE_H

#include <string>
#include <vector>

#include "Base/rpt/rpt.h"

namespace obrix::test {

struct Report {
    int level;
    std::string text;
    friend bool operator==(const Report&, const Report&) = default;
};

class ReportCapture {
public:
    ReportCapture();
    ~ReportCapture();
    ReportCapture(const ReportCapture&) = delete;
    ReportCapture& operator=(const ReportCapture&) = delete;

    const std::vector<Report>& reports() const;
    /// The texts of all reports, in order.
    std::vector<std::string> texts() const;
    /// The texts of all reports joined into one string.
    std::string joined() const;
    void clear();

private:
    ReportSink previous_;
};

} // namespace obrix::test

#endif
