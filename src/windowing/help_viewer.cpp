#include "windowing/help_viewer.h"

#include "base/owners.h"
#include "base/system_libraries.h"
#include "files/path.h"
#include "files/temp_file.h"

#include <string>

namespace vxut {
namespace {

constexpr DWORD kStartPatience = 10000;
constexpr wchar_t kViewerClass[] = L"HH Parent";

String CommandLine(const String& file, HelpViewerMode mode, uint32_t number) {
    String line(L"HH.EXE");
    if (mode == HelpViewerMode::kPage) {
        String page;
        page.Format(L" -mapid %d", number);
        line += page;
    }
    return line + L" \"" + file + L"\"";
}

// The process, or none with the last error set.
clsAutoCloseHandle StartProcess(const String& commandLine, DWORD& processId) {
    std::wstring line(commandLine.Text()); // which the system may change
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process))
        return {};
    processId = process.dwProcessId;
    const clsAutoCloseHandle thread(process.hThread);
    return clsAutoCloseHandle(process.hProcess);
}

HWND ViewerWindowOf(DWORD processId) {
    for (HWND window = nullptr; (window = FindWindowExW(nullptr, window, kViewerClass, nullptr));) {
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        if (owner == processId) return window;
    }
    return nullptr;
}

// Whether both files exist and were written at the same time.
bool IsSameTime(const String& file, const String& copy) {
    WIN32_FILE_ATTRIBUTE_DATA data, dataOfCopy;
    return GetFileAttributesExW(file.Text(), GetFileExInfoStandard, &data) &&
           GetFileAttributesExW(copy.Text(), GetFileExInfoStandard, &dataOfCopy) &&
           CompareFileTime(&data.ftLastWriteTime, &dataOfCopy.ftLastWriteTime) == 0;
}

bool IsOnNetwork(const String& file) {
    auto& isNetworkPath = Shlwapi().PathIsNetworkPath;
    return isNetworkPath.IsAvailable() && isNetworkPath(file.Text());
}

} // namespace

String CopyOfHelpFile(const String& file) {
    const String copy = TempFolder(kSharedTempFolder) + FilePart(file);
    return IsSameTime(file, copy) || CopyFileW(file.Text(), copy.Text(), FALSE) ? copy : file;
}

bool clsHelpViewer::Start(HWND owner, const String& file, HelpViewerMode mode, uint32_t number) {
    Close();
    DWORD processId = 0;
    // Viewers refuse to show pages from the network.
    const String local = IsOnNetwork(file) ? CopyOfHelpFile(file) : file;
    const clsAutoCloseHandle process = StartProcess(CommandLine(local, mode, number), processId);
    if (!process) {
        String text;
        text.Format(L"CreateProcess() failed: %s", String::FromError(GetLastError()).Text());
        MessageBoxW(owner, text.Text(), L"ERROR", MB_ICONERROR);
        return false;
    }
    WaitForInputIdle(process.Get(), kStartPatience);
    window_ = ViewerWindowOf(processId);
    return true;
}

void clsHelpViewer::Close() {
    if (IsWindow(window_)) PostMessageW(window_, WM_CLOSE, 0, 0);
    window_ = nullptr;
}

} // namespace vxut
