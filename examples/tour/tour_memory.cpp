// Memory accounting, scratch memory and text: what the library holds by call site, a mapped
// buffer outside the heap, the machine's memory, and a label font with a capitalised title.
#include <cstdio>
#include <cstdlib>

#include "ObrixBase/ObrixBase.h"
#include "examples/tour/tour.h"

namespace {

struct Curve {
    struct Curve *prev, *next;
    double length;
};

} // namespace

void tourMemory() {
    tourHeading("Memory accounting and text");

    // Blocks from MA_malloc are counted by the line that asked for them; leave a few live
    // and the report points at that line.
    Curve* curves[3];
    for (Curve*& c : curves)
        c = static_cast<Curve*>(MA_calloc(1, sizeof(Curve), __LINE__, __FILE__));
    char* name = MA_strdup("fillet between two patches", __LINE__, __FILE__);
    AA_set_print_out(AA_OUTPUT_STDOUT, nullptr);
    MA_report();
    AA_set_print_out(AA_OUTPUT_STDERR, nullptr);
    std::fflush(stdout);
    for (Curve* c : curves)
        MA_free(c);
    // An accounted block is a plain C heap block, so code that frees with free() may have
    // it; MA_forget first keeps the counts exact.
    MA_forget(name);
    std::free(name);

    // Scratch memory for a large temporary buffer: mapped, zero-filled, released whole.
    const size_t scratchBytes = 8u << 20;
    if (auto* scratch = static_cast<double*>(Ma_allocMmapMemory(scratchBytes, MA_MMAP_ANONYMOUS))) {
        scratch[0] = 1.0;
        MA_Mmap_stats mapped;
        Ma_getMmapStats(&mapped);
        std::printf("mapped scratch: %zu bytes in %zu region(s)\n", mapped.live_bytes,
                    mapped.live_regions);
        Ma_freeMmapMemory(scratch);
    }
    MA_System_memory machine;
    if (Ma_getSystemMemory(&machine))
        std::printf("physical memory: %llu MiB, of which %llu MiB available\n",
                    static_cast<unsigned long long>(machine.physical_total >> 20),
                    static_cast<unsigned long long>(machine.physical_available >> 20));

    // A label font: the size snaps to the font dialog's list, and the text form reads back.
    qvObrixBase::FontProperties label("Segoe UI", 13.2, qvObrixBase::FontProperties::BoldWeight);
    std::printf("label font: %s\n", label.toText().c_str());
    std::printf("title: %s\n",
                qvObrixBase::titleCase("a step-by-step guide to NURBS surfaces: the basics of "
                                       "trimming")
                    .c_str());
    // Sentence case lowers every first letter but a sentence's; words with capitals inside
    // (iPhone, NURBS) are names and stay as they are.
    std::printf(
        "sentence: %s\n",
        qvObrixBase::sentenceCase("the NURBS View Is Ready. open It on the iPhone").c_str());
}
