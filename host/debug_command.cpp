// vlm debug: writes to the debug channel.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/text.h"

#include <util.h>
#include <windows.h>

#include <string>

namespace vlm {

namespace {

constexpr wchar_t kModule[] = L"module";

void WriteLine(const std::wstring* module, const std::wstring& text) {
    UtilDebugExt(module ? module->c_str() : nullptr, 0, L"%s", text.c_str());
}

// Calls take with each line of standard input.
template <class Take>
void ForEachInputLine(Take take) {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    std::string pending;
    char chunk[4096];
    for (DWORD bytes = 0; ReadFile(input, chunk, sizeof chunk, &bytes, nullptr) && bytes > 0;) {
        pending.append(chunk, bytes);
        size_t begin = 0;
        for (size_t end; (end = pending.find('\n', begin)) != std::string::npos; begin = end + 1)
            take(pending.substr(begin, end - begin));
        pending.erase(0, begin);
    }
    if (!pending.empty()) take(pending);
}

ExitCode RunDebug(const clsArguments& arguments, clsOutput&) {
    const std::wstring* module = arguments.Value(kModule);
    if (arguments.HasOperand(0)) {
        WriteLine(module, arguments.Operand(0));
        return kExitSuccess;
    }
    ForEachInputLine([&](std::string line) {
        if (line.ends_with('\r')) line.pop_back();
        WriteLine(module, WideOf(line, IsStrictUtf8(line) ? CP_UTF8 : CP_ACP));
    });
    return kExitSuccess;
}

constexpr Option kOptions[] = {
    {kModule, L"NAME", L"text for the module column"},
};

} // namespace

Command DebugCommand() {
    return {
        .name = L"debug",
        .summary = L"Write lines to the debug channel",
        .operands = L"[TEXT]",
        .help =
            L"Without TEXT, writes each line of standard input. The lines are received by a viewer\n"
            L"(vlm trace) and by the log file that is set in the registry. If there is neither, nothing\n"
            L"is written.",
        .options = kOptions,
        .run = RunDebug,
    };
}

} // namespace vlm
