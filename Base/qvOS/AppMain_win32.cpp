#include "Base/qvOS/AppMain.h"

#include <windows.h>

namespace qvOS {

// GetModuleFileNameW truncates silently when the buffer is short; grow until it fits.
static qvString::CString moduleFileName(HMODULE module) {
    std::wstring buffer(MAX_PATH, L'\0');
    for (;;) {
        DWORD n = GetModuleFileNameW(module, buffer.data(), static_cast<DWORD>(buffer.size()));
        if (n == 0)
            return {};
        if (n < buffer.size()) {
            buffer.resize(n);
            return qvString::IString(buffer).toUtf8();
        }
        if (buffer.size() >= 32768)
            return {};
        buffer.resize(buffer.size() * 2);
    }
}

qvString::CString AppMain::getExecutablePath() {
    return moduleFileName(nullptr);
}

qvString::CString AppMain::getLibraryPath() {
    // The module that holds this very function is libBase's DLL.
    HMODULE self = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            reinterpret_cast<LPCWSTR>(&AppMain::getLibraryPath), &self))
        return {};
    return moduleFileName(self);
}

} // namespace qvOS
