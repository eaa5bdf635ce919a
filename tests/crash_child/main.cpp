// vxut_crash_child CLASS [PLACE] [CONDITION...]: dies of a fault on purpose, as a client of the DLL.
#include "faults.h"
#include "prof.h"
#include "util.h"

#include <windows.h>

#include <cstdio>
#include <cstring>

namespace {

using namespace crash_child;

void Protect() { UtilExHandlerStartProtection(0); }

LRESULT CALLBACK FaultInWindow(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_APP) Fault();
    return DefWindowProcW(window, message, first, second);
}

int CALLBACK FaultInCallback(HPROF, const wchar_t*, const wchar_t*, HPROFLIST, void*) {
    Fault();
    return 1;
}

DWORD WINAPI FaultProtected(void*) {
    Protect();
    Fault();
    return 0;
}

DWORD WINAPI FaultUnprotected(void*) {
    Fault();
    return 0;
}

void RunThread(LPTHREAD_START_ROUTINE routine) {
    const HANDLE thread = CreateThread(nullptr, 0, routine, nullptr, 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
}

void FaultInPlace(const char* place) {
    if (std::strcmp(place, "thread") == 0) return RunThread(FaultProtected);
    if (std::strcmp(place, "unprotected") == 0) return RunThread(FaultUnprotected);
    if (std::strcmp(place, "two") == 0) {
        HANDLE threads[] = {CreateThread(nullptr, 0, FaultProtected, nullptr, 0, nullptr),
                            CreateThread(nullptr, 0, FaultProtected, nullptr, 0, nullptr)};
        WaitForMultipleObjects(2, threads, TRUE, INFINITE);
        return;
    }
    if (std::strcmp(place, "window") == 0) {
        WNDCLASSW type = {};
        type.lpfnWndProc = FaultInWindow;
        type.lpszClassName = L"CrashChild";
        RegisterClassW(&type);
        const HWND window = CreateWindowW(L"CrashChild", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100,
                                          100, nullptr, nullptr, nullptr, nullptr);
        SetActiveWindow(window);
        SendMessageW(window, WM_APP, 0, 0);
        return;
    }
    if (std::strcmp(place, "callback") == 0) {
        const HPROF job = ProfJobOpenW(L"");
        ProfSetStringW(job, nullptr, L"a", L"b");
        ProfEnumW(job, nullptr, FaultInCallback, nullptr);
        return;
    }
    Fault();
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2 || !SetFault(arguments[1])) return 99;
    for (int i = 3; i < count; ++i)
        if (!SetCondition(arguments[i])) return 98;
    UtilExHandlerJobOpen();
    if (count < 3 || std::strcmp(arguments[2], "unprotected") != 0) Protect();
    FaultInPlace(count > 2 ? arguments[2] : "main");
    UtilExHandlerEndProtection(0);
    UtilExHandlerJobClose();
    std::printf("survived");
    return 0;
}
