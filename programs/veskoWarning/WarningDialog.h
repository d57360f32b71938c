// The desktop dialog of veskoWarning: GTK 3 on Linux, the task dialog on Windows. Declared
// here and wired in by main; the program builds without it where no toolkit is found.
#ifndef OBRIX_PROGRAMS_VESKOWARNING_WARNINGDIALOG_H
#define OBRIX_PROGRAMS_VESKOWARNING_WARNINGDIALOG_H

#include "ObrixBase/util/VeskoWarningParams.h"

namespace veskoWarning {

/// A DialogFn: shows the title, the lines in order, the details below them, and one button
/// per label in order, the first being the default (Enter). Returns false when no desktop can
/// be reached; else true with the index pressed, or -1 when the window was closed.
bool showWarningDialog(const qvObrixBase::VeskoWarningParams& params, int& answer);

} // namespace veskoWarning

#endif
