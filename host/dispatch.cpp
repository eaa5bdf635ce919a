#include "host/dispatch.h"

#include "host/arguments.h"
#include "host/help.h"
#include "host/output.h"
#include "host/text.h"

#include <exception>

namespace vlm {

namespace {

const Command* FindChild(const Command& group, const std::wstring& name) {
    for (const Command& child : group.children)
        if (name == child.name) return &child;
    return nullptr;
}

ExitCode RunLeaf(const Command& command, std::span<const std::wstring> words, Output& out) {
    const ExitCode code = command.run(Arguments(command, words), out);
    if (!out.Flush()) Fail(L"cannot write the output");
    return code;
}

void Report(const CommandError& error, const std::wstring& path, const Command& command, Output& errors) {
    errors.Line(path + L": " + error.message);
    if (error.code != kExitUsage) return;
    errors.Line(UsageLine(path, command));
    errors.Line(L"Try '" + path + L" --help' for more information.");
}

// Returns the command that the first words name. Removes those from words and adds them to path.
const Command& Walk(const Command& root, std::span<const std::wstring>& words, std::wstring& path) {
    const Command* command = &root;
    while (!words.empty()) {
        const Command* child = FindChild(*command, words[0]);
        if (!child) break;
        command = child;
        path.append(L" ").append(child->name);
        words = words.subspan(1);
    }
    return *command;
}

ExitCode RunOrHelp(const Command& command, const std::wstring& path, std::span<const std::wstring> words,
                   Output& out) {
    if (IsHelpWanted(words)) {
        out.Write(HelpText(path, command));
        return out.Flush() ? kExitSuccess : kExitFailure;
    }
    if (command.run) return RunLeaf(command, words, out);
    FailUsage(words.empty() ? L"missing command" : L"unknown command: " + words[0]);
}

} // namespace

ExitCode Dispatch(const Command& root, std::span<const std::wstring> words, Output& out, Output& errors) {
    std::wstring path = root.name;
    const Command& command = Walk(root, words, path);
    try {
        return RunOrHelp(command, path, words, out);
    } catch (const CommandError& error) {
        out.Flush();
        Report(error, path, command, errors);
        return error.code;
    } catch (const std::exception& error) {
        errors.Line(path + L": " + WideOf(error.what(), CP_UTF8));
        return kExitFailure;
    }
}

} // namespace vlm
