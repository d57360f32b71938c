// What veskoWarning does with a description once it has one: pick a way to ask (a scripted
// answer, a dialog on the desktop, the terminal, or nobody), ask, and write the answer. The
// dialog bodies (GTK on Linux, the task dialog on Windows) sit in the program itself and come
// in through a function pointer, so the tests link this part without a toolkit.
#ifndef OBRIX_PROGRAMS_VESKOWARNING_WARNINGPROGRAM_H
#define OBRIX_PROGRAMS_VESKOWARNING_WARNINGPROGRAM_H

#include <cstdio>

#include "Base/qvString/CString.h"
#include "ObrixBase/util/VeskoWarningParams.h"

namespace veskoWarning {

/// How to ask. Auto tries, in order: the scripted answer, the dialog, the terminal, nobody.
enum class Frontend { Auto, Dialog, Terminal, Log };

/// Shows `params` (which always has at least one button) in a dialog and waits. Returns false
/// when there is no desktop to show it on; otherwise true with the button's index, or -1 when
/// the window was closed.
using DialogFn = bool (*)(const qvObrixBase::VeskoWarningParams& params, int& answer);

/// The environment variable that answers without asking: a button's exact label, else a
/// decimal 0-based index, or -1 for a closed window.
constexpr const char* kAnswerVariable = "VESKO_WARNING_ANSWER";

/// `params` with the "OK" button added when it has none, as every front end shows it.
qvObrixBase::VeskoWarningParams withButtons(qvObrixBase::VeskoWarningParams params);

/// Resolves a scripted answer `answerText` against `params`' buttons: a label first (the first of
/// equal labels), then an index. False with a reason when it names no button.
bool scriptedAnswer(const qvObrixBase::VeskoWarningParams& params,
                    const qvString::CString& answerText, int& answer, qvString::CString& error);

/// The warning as text for a terminal or a log: the title, the lines, the details indented,
/// then the buttons numbered from 1 ("  1) Overwrite").
qvString::CString warningText(const qvObrixBase::VeskoWarningParams& params);

/// Prints the warning on `out` and reads the answer from `in`: a button's number (1-based as
/// printed), or an empty line for the first. Asks again after anything else, at most 20
/// times; the end of input or too many wrong answers give -1 (closed).
int askOnTerminal(const qvObrixBase::VeskoWarningParams& params, std::FILE* in, std::FILE* out);

/// Opens the controlling terminal (the console on Windows) for reading and writing; false
/// when the process has none. Close both with std::fclose.
bool openTerminal(std::FILE*& in, std::FILE*& out);

/// Switches stdin and stdout to bytes as they are (Windows streams translate line ends).
void useBinaryStdio();

/// Asks through `frontend` (dialog may be null: no desktop support built in), writes the
/// answer as "<index>\n" to `answerOut` and returns the exit status: 0 with an answer, 2 with
/// a one-line reason on `log` when the chosen front end cannot ask or the scripted answer
/// names no button. Without anyone to ask (Auto, no desktop, no terminal) the warning goes to
/// `log` and the answer is 0, the first button.
int run(const qvObrixBase::VeskoWarningParams& params, Frontend frontend, DialogFn dialog,
        std::FILE* answerOut, std::FILE* log);

} // namespace veskoWarning

#endif
