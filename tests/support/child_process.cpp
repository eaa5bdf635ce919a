#include "tests/support/child_process.h"

#include <windows.h>

#include <cstdio>

namespace vxut::test {

// The child program is in the folder of the test program.
ChildResult RunChild(const std::wstring& task) {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring own(path);
    const std::wstring program = own.substr(0, own.find_last_of(L'\\') + 1) + L"vxut_test_child.exe";
    ChildResult result;
    FILE* const pipe = _wpopen((L"\"" + program + L"\" " + task).c_str(), L"rb");
    if (!pipe) return result;
    for (int byte; (byte = std::fgetc(pipe)) != EOF;) result.output += static_cast<char>(byte);
    result.exitCode = static_cast<int>(_pclose(pipe));
    return result;
}

} // namespace vxut::test
