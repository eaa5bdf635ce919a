// vxut_crash_child FOLDER CLASS [PLACE] [CONDITION...]: dies of a fault on purpose, as a client of the DLL.
// Its log, its temporary files and its user settings are its own; its user cannot be asked unless the
// condition "interactive" says so.
#include "faults.h"
#include "prof.h"
#include "util.h"

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

using namespace crash_child;

LRESULT CALLBACK FaultInWindow(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_APP) Fault();
    return DefWindowProcW(window, message, first, second);
}

int CALLBACK FaultInCallback(HPROF, const wchar_t*, const wchar_t*, HPROFLIST, void*) {
    Fault();
    return 1;
}

DWORD WINAPI FaultProtected(void*) {
    UtilExHandlerStartProtection(0);
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

// Makes the process see other user settings than the rest of the session, and a folder of its own.
void Isolate(const char* folder) {
    for (const char* name : {"APPDATA", "TEMP", "TMP"}) SetEnvironmentVariableA(name, folder);
    const std::wstring key = L"Software\\CrashChild-" + std::to_wstring(GetCurrentProcessId());
    HKEY root;
    RegCreateKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                    &root, nullptr);
    RegOverridePredefKey(HKEY_CURRENT_USER, root);
    SetSetting(L"GPFMiniDumpMode", 0);
}

// On a window station that nobody sees, no user can be asked. The answer lasts for the life of the process.
void HideUser() {
    const HWINSTA visible = GetProcessWindowStation();
    SetProcessWindowStation(CreateWindowStationW(nullptr, 0, GENERIC_ALL, nullptr));
    UtilGetUIInteractionAllowed();
    SetProcessWindowStation(visible);
}

} // namespace

int main(int count, char** arguments) {
    if (count < 3 || !SetFault(arguments[2])) return 99;
    Isolate(arguments[1]);
    if (std::strcmp(arguments[count - 1], "interactive") == 0)
        --count;
    else
        HideUser();
    for (int i = 4; i < count; ++i)
        if (!SetCondition(arguments[i])) return 98;
    const char* const place = count > 3 ? arguments[3] : "main";
    UtilExHandlerJobOpen();
    if (std::strcmp(place, "unprotected") != 0) UtilExHandlerStartProtection(0);
    FaultInPlace(place);
    UtilExHandlerEndProtection(0);
    UtilExHandlerJobClose();
    std::printf("survived");
    return 0;
}
