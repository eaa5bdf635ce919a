// Runs a task of vxut_test_child in a process of its own.
#pragma once

#include "frame/owners.h"

#include <windows.h>

#include <string>

namespace vxut::test {

struct ChildResult {
    int exitCode = -1000;
    std::string output; // what it has printed
};

inline ChildResult RunChild(const std::wstring& task) {
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    clsAutoCloseHandle ours, theirs;
    if (!CreatePipe(ours.Receive(), theirs.Receive(), &inheritable, 0)) return {};
    SetHandleInformation(ours.Get(), HANDLE_FLAG_INHERIT, 0);

    wchar_t own[MAX_PATH] = L""; // the child's program stands beside it
    GetModuleFileNameW(nullptr, own, MAX_PATH);
    const std::wstring path(own);
    std::wstring command = path.substr(0, path.rfind(L'\\') + 1) + L"vxut_test_child.exe";
    command = L"\"" + command + L"\" " + task;
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = theirs.Get();
    PROCESS_INFORMATION started = {};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                        &started))
        return {};
    const clsAutoCloseHandle process(started.hProcess), thread(started.hThread);
    theirs.Reset();

    ChildResult result;
    char buffer[4096];
    for (DWORD read = 0; ReadFile(ours.Get(), buffer, sizeof buffer, &read, nullptr) && read;)
        result.output.append(buffer, read);
    WaitForSingleObject(process.Get(), INFINITE);
    DWORD exitCode = 0;
    GetExitCodeProcess(process.Get(), &exitCode);
    result.exitCode = static_cast<int>(exitCode);
    return result;
}

} // namespace vxut::test
