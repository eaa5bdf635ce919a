// vlm env: the environment that the library detects.
#include "host/groups.h"

#include "host/library_path.h"
#include "host/output.h"

#include <util.h>
#include <windows.h>

#include <string>

namespace vlm {

namespace {

struct EnvironmentWords {
    uint32_t type;
    const wchar_t* words;
};
constexpr EnvironmentWords kEnvironmentWords[] = {
    {UTIL_ENVIRONMENT_INTERACTIVE, L"interactive session"},
    {UTIL_ENVIRONMENT_NONINTERACTIVE, L"service, or no interactive session"},
    {UTIL_ENVIRONMENT_WEBSERVER, L"web server"},
};

std::wstring WordsOf(uint32_t type) {
    for (const EnvironmentWords& row : kEnvironmentWords)
        if (row.type == type) return row.words;
    return L"unknown (" + std::to_wstring(type) + L")";
}

std::wstring Session() {
    DWORD session = 0;
    return ProcessIdToSessionId(GetCurrentProcessId(), &session) ? std::to_wstring(session) : L"unknown";
}

ExitCode RunEnv(const Arguments&, Output& out) {
    out.Field(L"Environment", WordsOf(UtilGetOSEnvironmentType()));
    out.Field(L"User interaction", UtilGetUIInteractionAllowed() ? L"allowed" : L"not allowed");
    out.Field(L"Language id", std::to_wstring(UtilLanguageGet()));
    out.Field(L"Code page", std::to_wstring(GetACP()));
    out.Field(L"Process", ModulePath(nullptr));
    out.Field(L"Process id", std::to_wstring(GetCurrentProcessId()));
    out.Field(L"Library", LibraryPath());
    out.Field(L"Session", Session());
    out.Field(L"Debug channel", UtilGetFlags() ? L"listener attached" : L"no listener");
    return kExitSuccess;
}

} // namespace

Command EnvCommand() {
    return {
        .name = L"env",
        .summary = L"Print the environment that the library detects: kind of session, language, paths",
        .run = RunEnv,
    };
}

} // namespace vlm
