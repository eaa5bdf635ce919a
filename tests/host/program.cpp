#include "tests/host/program.h"

#include <fstream>
#include <iterator>

namespace vlm::test {

namespace fs = std::filesystem;

namespace {

constexpr DWORD kPatience = 60000;

fs::path OwnFolder() {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return fs::path(path).parent_path();
}

vxut::clsAutoCloseFile InheritableFile(const fs::path& path) {
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    return vxut::clsAutoCloseFile(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                              &inheritable, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

} // namespace

RunningProgram::RunningProgram(const std::wstring& program, const std::wstring& words, const fs::path& folder,
                               const std::wstring& name, HANDLE output, HANDLE input)
    : outPath_(folder / (name + L".out")), errorsPath_(folder / (name + L".err")) {
    std::wstring commandLine = L"\"" + (OwnFolder() / program).wstring() + L"\" " + words;
    const auto out = InheritableFile(outPath_);
    const auto errors = InheritableFile(errorsPath_);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output ? output : out.Get();
    startup.hStdError = errors.Get();
    startup.hStdInput = input;
    PROCESS_INFORMATION information = {};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, CREATE_NEW_PROCESS_GROUP,
                        nullptr, folder.c_str(), &startup, &information))
        return;
    process_.Reset(information.hProcess);
    vxut::clsAutoCloseHandle(information.hThread).Reset();
}

RunningProgram::~RunningProgram() {
    if (!process_) return;
    TerminateProcess(process_.Get(), 1);
    WaitForSingleObject(process_.Get(), kPatience);
}

Answer RunningProgram::Wait() {
    Answer answer;
    if (!process_) return answer;
    if (WaitForSingleObject(process_.Get(), kPatience) != WAIT_OBJECT_0) TerminateProcess(process_.Get(), 1);
    DWORD exitCode = 0;
    GetExitCodeProcess(process_.Get(), &exitCode);
    answer.exitCode = static_cast<int>(exitCode);
    answer.out = BytesOfFile(outPath_);
    answer.errors = BytesOfFile(errorsPath_);
    return answer;
}

std::string BytesOfFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace vlm::test
