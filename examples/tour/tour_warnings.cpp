// Warnings: a question with three buttons, answered by a script as a test run or a batch job
// would answer it; the helper program veskoWarning does the asking.
#include <cstdio>

#include "Base/qvOS/Env.h"
#include "ObrixBase/ObrixBase.h"
#include "examples/tour/tour.h"

void tourWarnings() {
    tourHeading("Warnings");
    // Without this the warning would open a dialog (or ask on the terminal) and wait.
    qvOS::SetEnv("VESKO_WARNING_ANSWER", "Keep both");

    int answer = VK_warning(VK_WARN_TITLE, "Import", VK_WARN_KIND, "question", VK_WARN_LINE,
                            "\"bracket.obx\" is already in the project.", VK_WARN_LINE,
                            "Replace it with the imported one?", VK_WARN_BUTTON, "Replace",
                            VK_WARN_BUTTON, "Keep both", VK_WARN_BUTTON, "Cancel", VK_WARN_END);
    static const char* const meaning[] = {"replace", "keep both", "cancel"};
    if (answer >= 0)
        std::printf("the import warning was answered with button %d: %s\n", answer,
                    meaning[answer]);
    else
        std::printf("the import warning got no button (%s)\n",
                    answer == VK_WARNING_CLOSED ? "closed" : "failed");
    qvOS::SetEnv("VESKO_WARNING_ANSWER", nullptr);

    // QA assertions stop only test installations (VESKO_QA or VESKO_DEBUG set).
    VeskoQAAssert(1234, answer != VK_WARNING_FAILED);
    std::printf("QA assertions are %s in this process\n", VeskoQAEnabled() ? "on" : "off");
}
