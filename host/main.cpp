// vlm.exe: the library from the command line.
#include "host/dispatch.h"
#include "host/groups.h"
#include "host/output.h"

#include <windows.h>

#include <string>
#include <vector>

int wmain(int count, wchar_t** words) {
    const vlm::Command groups[] = {
        vlm::CharsetCommands(), vlm::DebugCommand(),    vlm::EnvCommand(),   vlm::HeapDemoCommand(),
        vlm::PathCommands(),    vlm::ProfileCommands(), vlm::TraceCommand(), vlm::VersionCommand(),
    };
    const vlm::Command root = {
        .name = L"vlm",
        .summary = L"Profiles, paths, text and debug lines through the vxut library",
        .help =
            L"Output is UTF-8. Options begin with two dashes and stand anywhere behind the command; \"--\" "
            L"ends\n"
            L"them.",
        .children = groups,
    };
    const std::vector<std::wstring> arguments(words + (count ? 1 : 0), words + count);
    vlm::clsOutput out(STD_OUTPUT_HANDLE);
    vlm::clsOutput errors(STD_ERROR_HANDLE);
    return vlm::Dispatch(root, arguments, out, errors);
}
