// A command of vlm as the dispatcher runs it and the help tells it. A group is a command with children.
#pragma once

#include <span>
#include <string>
#include <utility>

namespace vlm {

class clsArguments;
class clsOutput;

enum ExitCode : int {
    kExitSuccess = 0,
    kExitFailure = 1,
    kExitUsage = 2,
};

// An option without a value name is a switch.
struct Option {
    const wchar_t* name = nullptr;
    const wchar_t* valueName = nullptr;
    const wchar_t* help = nullptr;
};

// NOLINTBEGIN(readability-redundant-member-init): a field without an initialiser must be named in each
// command.
struct Command {
    const wchar_t* name = nullptr;
    const wchar_t* summary = nullptr;
    // The operands as the usage line shows them, optional ones in brackets behind the others: "FILE [LIST]".
    const wchar_t* operands = L"";
    const wchar_t* help = L"";
    // Adds to the help what only a table knows.
    std::wstring (*details)() = nullptr;
    std::span<const Option> options = {};
    ExitCode (*run)(const clsArguments& arguments, clsOutput& out) = nullptr;
    std::span<const Command> children = {};
};
// NOLINTEND(readability-redundant-member-init)

// Ends a command from anywhere inside it.
struct CommandError {
    ExitCode code = kExitFailure;
    std::wstring message;
};

[[noreturn]] inline void Fail(std::wstring message) { throw CommandError{kExitFailure, std::move(message)}; }
[[noreturn]] inline void FailUsage(std::wstring message) {
    throw CommandError{kExitUsage, std::move(message)};
}

} // namespace vlm
