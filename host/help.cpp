#include "host/help.h"

namespace vlm {

namespace {

constexpr wchar_t kExitCodes[] =
    L"\nExit codes:\n"
    L"  0  success\n"
    L"  1  not found, or the operation failed\n"
    L"  2  usage error\n";

std::wstring ChildrenText(const Command& command) {
    if (command.children.empty()) return {};
    std::wstring text = L"\nCommands:\n";
    for (const Command& child : command.children) text += HelpRow(child.name, child.summary);
    return text;
}

std::wstring OptionsText(const Command& command) {
    std::wstring text = L"\nOptions:\n";
    for (const Option& option : command.options) {
        std::wstring left = option.letter ? std::wstring{L'-', option.letter, L',', L' '} : L"";
        left.append(L"--").append(option.name);
        if (option.valueName) left.append(L" ").append(option.valueName);
        text += HelpRow(left, option.help);
    }
    return text + HelpRow(L"--help", L"show this help");
}

} // namespace

std::wstring HelpRow(const std::wstring& left, const std::wstring& right) {
    constexpr size_t kColumn = 22;
    const size_t gap = left.size() + 2 < kColumn ? kColumn - left.size() : 2;
    return L"  " + left + std::wstring(gap, L' ') + right + L"\n";
}

std::wstring UsageLine(const std::wstring& path, const Command& command) {
    std::wstring line = L"Usage: " + path;
    if (!command.children.empty()) return line + L" COMMAND ...";
    if (!command.options.empty()) line += L" [OPTIONS]";
    if (*command.operands) line = line + L" " + command.operands;
    return line;
}

std::wstring HelpText(const std::wstring& path, const Command& command) {
    std::wstring text = UsageLine(path, command) + L"\n\n" + command.summary + L".\n";
    if (*command.help) text = text + L"\n" + command.help + L"\n";
    if (command.details) text = text + L"\n" + command.details();
    text += ChildrenText(command) + OptionsText(command) + kExitCodes;
    if (!command.children.empty())
        text += L"\nRun '" + path + L" COMMAND --help' for the help of a command.\n";
    return text;
}

} // namespace vlm
