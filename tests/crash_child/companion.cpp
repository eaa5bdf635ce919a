// VLMRCTL.dll: stands in for the companion library. The variable COMPANION of the environment says what it
// does: "absent": it cannot be loaded; "abort": the user stops the packing; "fault": it faults when it is
// asked. It translates the path of one help file.
#include <windows.h>

#include <cstdint>
#include <cstdlib>
#include <cwchar>
#include <iterator>
#include <string>

namespace {

std::string Mode() {
    char mode[32] = "";
    GetEnvironmentVariableA("COMPANION", mode, sizeof mode);
    return mode;
}

int jobAndDialog = 0;

} // namespace

extern "C" {
__declspec(dllexport) void* CtlJobOpenEx(HMODULE) { return &jobAndDialog; }
__declspec(dllexport) void CtlJobCloseEx(void*) {}
__declspec(dllexport) void* CtlAbortDlgStart(void*, const wchar_t*, const wchar_t*) { return &jobAndDialog; }
__declspec(dllexport) void CtlAbortDlgEnd(void*) {}
__declspec(dllexport) void CtlAbortDlgSetText(void*, const wchar_t*, int32_t) {}
__declspec(dllexport) HWND CtlAbortDlgHWnd(void*) { return nullptr; }
__declspec(dllexport) int32_t CtlAbortDlgCheckAbort(void*) {
    if (Mode() == "fault") *static_cast<volatile int*>(nullptr) = 1;
    return Mode() == "abort" ? -1 : 0;
}
__declspec(dllexport) int32_t CtlXlatPath(const wchar_t* path, wchar_t* target, uint32_t capacity) {
    constexpr wchar_t kKnown[] = L"known.hlp";
    constexpr wchar_t kTranslated[] = L"C:\\translated.hlp";
    if (std::wcscmp(path, kKnown) != 0 || capacity < std::size(kTranslated)) return 0;
    std::wcscpy(target, kTranslated);
    return 1;
}
BOOL WINAPI DllMain(HINSTANCE, DWORD, void*) { return Mode() != "absent"; }
}
