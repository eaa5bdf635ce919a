// Takes the role of HH.EXE for tests: its window has the command line as text and lives until it is closed.
#include <windows.h>

namespace {

constexpr DWORD kLifeMilliseconds = 30000; // if nobody closes it

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_TIMER || message == WM_DESTROY) PostQuitMessage(0);
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace

int WINAPI wWinMain(HINSTANCE module, HINSTANCE, wchar_t*, int) {
    WNDCLASSW description = {};
    description.lpfnWndProc = Procedure;
    description.hInstance = module;
    description.lpszClassName = L"HH Parent";
    RegisterClassW(&description);
    const HWND window = CreateWindowExW(0, description.lpszClassName, GetCommandLineW(), WS_OVERLAPPED, 0, 0,
                                        50, 50, nullptr, nullptr, module, nullptr);
    SetTimer(window, 1, kLifeMilliseconds, nullptr);
    for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) DispatchMessageW(&message);
    return 0;
}
