#include "programs/veskoWarning/WarningDialog.h"

#include <string>
#include <vector>

#include <windows.h>

#include <commctrl.h>

namespace veskoWarning {

namespace {

// A service runs on a window station nobody sees: a dialog there would wait for ever.
bool desktopIsVisible() {
    HWINSTA station = GetProcessWindowStation();
    USEROBJECTFLAGS flags{};
    if (!station || !GetUserObjectInformationW(station, UOI_FLAGS, &flags, sizeof flags, nullptr))
        return false;
    return (flags.dwFlags & WSF_VISIBLE) != 0;
}

std::wstring joined(const qv::vector<qvString::CString>& texts) {
    std::wstring out;
    for (const qvString::CString& t : texts)
        out += (out.empty() ? L"" : L"\n") + static_cast<const std::wstring&>(t.toWide());
    return out;
}

// Button ids start above the ids the system gives its own buttons (IDOK, IDCANCEL, ...).
constexpr int kFirstButtonId = 100;

// The task dialog lives in version 6 of the common controls, which the program's manifest
// asks for. It is looked up rather than imported so that a copy run without its manifest
// still starts and falls back to a message box.
using TaskDialogIndirectFn = HRESULT(WINAPI*)(const TASKDIALOGCONFIG*, int*, int*, BOOL*);

bool showTaskDialog(const qvObrixBase::VeskoWarningParams& params, const std::wstring& title,
                    const std::wstring& text, int& answer) {
    HMODULE comctl = LoadLibraryW(L"comctl32.dll");
    auto taskDialog = comctl ? reinterpret_cast<TaskDialogIndirectFn>(reinterpret_cast<void*>(
                                   GetProcAddress(comctl, "TaskDialogIndirect")))
                             : nullptr;
    if (!taskDialog)
        return false;
    std::vector<std::wstring> labels;
    for (const qvString::CString& label : params.buttons)
        labels.push_back(label.toWide());
    std::vector<TASKDIALOG_BUTTON> buttons;
    for (std::size_t i = 0; i < labels.size(); ++i)
        buttons.push_back({kFirstButtonId + static_cast<int>(i), labels[i].c_str()});
    std::wstring details = joined(params.details);

    TASKDIALOGCONFIG config{};
    config.cbSize = sizeof config;
    config.dwFlags = TDF_ALLOW_DIALOG_CANCELLATION | TDF_SIZE_TO_CONTENT;
    config.pszWindowTitle = title.c_str();
    config.pszMainIcon = params.kind == "error"      ? TD_ERROR_ICON
                         : params.kind == "info"     ? TD_INFORMATION_ICON
                         : params.kind == "question" ? TD_INFORMATION_ICON
                                                     : TD_WARNING_ICON;
    config.pszContent = text.c_str();
    if (!details.empty())
        config.pszExpandedInformation = details.c_str();
    config.cButtons = static_cast<UINT>(buttons.size());
    config.pButtons = buttons.data();
    config.nDefaultButton = kFirstButtonId;
    int pressed = 0;
    if (FAILED(taskDialog(&config, &pressed, nullptr, nullptr)))
        return false;
    // Closing the window or Escape gives IDCANCEL: the defined "closed".
    answer = pressed >= kFirstButtonId ? pressed - kFirstButtonId : -1;
    return true;
}

// Without the task dialog only the system's fixed buttons exist: Yes, No and Cancel stand for
// the first three labels, which the text names.
bool showMessageBox(const qvObrixBase::VeskoWarningParams& params, const std::wstring& title,
                    std::wstring text, int& answer) {
    static const wchar_t* const standIns[] = {L"Yes", L"No", L"Cancel"};
    std::size_t count = params.buttons.size() < 3 ? params.buttons.size() : 3;
    if (count > 1) {
        text += L"\n";
        for (std::size_t i = 0; i < count; ++i)
            text += std::wstring(L"\n") + standIns[i] + L": " +
                    static_cast<const std::wstring&>(params.buttons[i].toWide());
    }
    UINT type = count == 1 ? MB_OK : count == 2 ? MB_YESNO : MB_YESNOCANCEL;
    int pressed = MessageBoxW(nullptr, text.c_str(), title.c_str(), type | MB_ICONWARNING);
    switch (pressed) {
    case 0:
        return false;
    case IDOK:
    case IDYES:
        answer = 0;
        return true;
    case IDNO:
        answer = 1;
        return true;
    case IDCANCEL:
        answer = 2;
        return true;
    default:
        answer = -1;
        return true;
    }
}

} // namespace

bool showWarningDialog(const qvObrixBase::VeskoWarningParams& params, int& answer) {
    if (!desktopIsVisible())
        return false;
    std::wstring title =
        params.title.empty() ? std::wstring(L"Warning") : std::wstring(params.title.toWide());
    std::wstring text = joined(params.lines);
    return showTaskDialog(params, title, text, answer) ||
           showMessageBox(params, title, text, answer);
}

} // namespace veskoWarning
