#include "tests/support/child_process.h"

#include "frame/owners.h"

#include <windows.h>

#include <thread>

namespace vxut::test {
namespace {

constexpr DWORD kPatience = 60000;
constexpr wchar_t kProgram[] = L"vxut_test_child.exe";

// Sets environment variables for a scope: a child inherits them.
class EnvironmentScope {
public:
    explicit EnvironmentScope(const std::map<std::wstring, std::wstring>& variables) : variables_(variables) {
        for (const auto& [name, value] : variables_) SetEnvironmentVariableW(name.c_str(), value.c_str());
    }
    ~EnvironmentScope() {
        for (const auto& [name, value] : variables_) SetEnvironmentVariableW(name.c_str(), nullptr);
    }

private:
    const std::map<std::wstring, std::wstring>& variables_;
};

// The child's program stands beside that of the tests.
std::wstring ChildProgram() {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring own(path);
    return own.substr(0, own.find_last_of(L'\\') + 1) + kProgram;
}

std::string ReadAll(HANDLE pipe) {
    std::string text;
    char buffer[4096];
    for (DWORD read = 0; ReadFile(pipe, buffer, sizeof buffer, &read, nullptr) && read;)
        text.append(buffer, read);
    return text;
}

ChildResult RunProgram(const std::wstring& program, const std::wstring& task,
                       const std::map<std::wstring, std::wstring>& environment) {
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    clsAutoCloseHandle ours, theirs;
    if (!CreatePipe(ours.Receive(), theirs.Receive(), &inheritable, 0)) return {};
    SetHandleInformation(ours.Get(), HANDLE_FLAG_INHERIT, 0);

    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = theirs.Get();
    PROCESS_INFORMATION information = {};
    std::wstring commandLine = L"\"" + program + L"\" " + task;
    const EnvironmentScope scope(environment);
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                        &information)) {
        return {};
    }
    const clsAutoCloseHandle process(information.hProcess), thread(information.hThread);
    theirs.Reset();

    ChildResult result;
    std::thread reader([&] { result.output = ReadAll(ours.Get()); });
    if (WaitForSingleObject(process.Get(), kPatience) != WAIT_OBJECT_0) TerminateProcess(process.Get(), 1);
    reader.join();
    DWORD exitCode = 0;
    GetExitCodeProcess(process.Get(), &exitCode);
    result.exitCode = static_cast<int>(exitCode);
    return result;
}

} // namespace

ChildResult RunChild(const std::wstring& task, const std::map<std::wstring, std::wstring>& environment) {
    return RunProgram(ChildProgram(), task, environment);
}

ChildResult RunChildAs(const std::wstring& program, const std::wstring& task,
                       const std::map<std::wstring, std::wstring>& environment) {
    if (!CopyFileW(ChildProgram().c_str(), program.c_str(), FALSE)) return {};
    return RunProgram(program, task, environment);
}

} // namespace vxut::test
