#include "tests/support/child_process.h"

#include <windows.h>

#include <cstdio>

namespace vxut::test {

namespace {

// The child's program is in the folder of the tests'.
std::wstring CommandLineOf(const std::wstring& task, const wchar_t* program = L"vxut_test_child") {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring own(path);
    return L"\"" + own.substr(0, own.find_last_of(L'\\') + 1) + program + L".exe\" " + task;
}

} // namespace

ChildResult RunChild(const std::wstring& task, const wchar_t* program) {
    ChildResult result;
    FILE* const pipe = _wpopen(CommandLineOf(task, program).c_str(), L"rb");
    if (!pipe) return result;
    for (int byte; (byte = std::fgetc(pipe)) != EOF;) result.output += static_cast<char>(byte);
    result.exitCode = static_cast<int>(_pclose(pipe));
    return result;
}

ChildHandle StartChild(const std::wstring& task) {
    std::wstring commandLine = CommandLineOf(task);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process))
        return ChildHandle(nullptr);
    const clsAutoCloseHandle thread(process.hThread);
    return ChildHandle(process.hProcess);
}

void ChildHandle::Kill() const {
    TerminateProcess(process_.Get(), 1);
    WaitForSingleObject(process_.Get(), 10'000);
}

} // namespace vxut::test
