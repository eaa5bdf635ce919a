// vlm.exe: the services of the library from the command line.
#include "host/dispatch.h"
#include "host/groups.h"
#include "host/output.h"

#include <windows.h>

#include <string>
#include <vector>

int wmain(int count, wchar_t** words) {
    const vlm::Command groups[] = {
        vlm::CharsetCommands(), vlm::CountryCommand(),  vlm::CrashCommands(),   vlm::DateCommands(),
        vlm::DebugCommand(),    vlm::DecodeCommand(),   vlm::DocinfoCommand(),  vlm::DownloadCommand(),
        vlm::EncodeCommand(),   vlm::EnvCommand(),      vlm::HeapDemoCommand(), vlm::HelpDemoCommand(),
        vlm::HtmlCommands(),    vlm::LanguageCommand(), vlm::PathCommands(),    vlm::ProfileCommands(),
        vlm::SortCommand(),     vlm::TempCommand(),     vlm::TraceCommand(),    vlm::VersionCommand(),
        vlm::WatchCommand(),    vlm::ZipCommands(),
    };
    const vlm::Command root = {
        .name = L"vlm",
        .summary = L"Use profiles, paths, text and debug lines of the vxut library",
        .help =
            L"Output is UTF-8. Options begin with two dashes and may appear anywhere after the command;\n"
            L"\"--\" ends the options.",
        .children = groups,
    };
    const std::vector<std::wstring> arguments(words + (count ? 1 : 0), words + count);
    vlm::Output out(STD_OUTPUT_HANDLE);
    vlm::Output errors(STD_ERROR_HANDLE);
    return vlm::Dispatch(root, arguments, out, errors);
}
