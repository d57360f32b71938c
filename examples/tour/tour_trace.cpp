// Trace log: a session records a few lines into its ring, then the ring file is read back
// with recover, the way a support tool reads the ring of a session that crashed.
#include <cstdio>

#include "Base/qvOS/File.h"
#include "Base/qvOS/SystemInfo.h"
#include "ObrixBase/ObrixBase.h"
#include "examples/tour/tour.h"

void tourTrace() {
    tourHeading("Trace log");
    // 100 bytes asked for, 512 given: the smallest ring. Level 2 records trace1 and trace2.
    if (!VeskoTrace::initialize(qvOS::tempDirectory().c_str(), 100, 2)) {
        std::printf("  no ring could be made in %s\n", qvOS::tempDirectory().c_str());
        return;
    }
    VeskoTrace::trace1(VeskoTrace::UI, "opened model %s", "wing.obx");
    VeskoTrace::trace2(VeskoTrace::Picking, "picked curve %d of %d", 7, 12);
    VeskoTrace::trace3(VeskoTrace::SPF, "fit details: not recorded at level 2");
    for (int step = 1; step <= 12; ++step)
        VeskoTrace::trace1(VeskoTrace::Undo, "undo step %d:\nmove point", step);
    const qvString::CString ring = VeskoTrace::ringFile();
    VeskoTrace::finalize();

    // Another process would do just this with the file left behind; the ring held the
    // latest lines only, and each line's newline became a space. The printout leaves out each
    // line's date and time (its first 20 characters).
    VeskoTrace::RecoverResult found;
    const qvUtil::Error error = VeskoTrace::recover(
        ring.c_str(), [](void*, const char* text) { std::printf("  %s\n", text + 20); }, nullptr,
        &found);
    if (error.isError())
        std::printf("  %s\n", error.message().c_str());
    std::printf("  %llu of %llu lines still in the ring%s\n",
                static_cast<unsigned long long>(found.records),
                static_cast<unsigned long long>(found.sequence),
                found.tornRecord ? ", the last one torn" : "");
    qvOS::fileDelete(ring);
}
