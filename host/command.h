// What the dispatcher needs to run a command of vlm, and the help to describe it.
#pragma once

#include <span>
#include <string>
#include <utility>

namespace vlm {

class Arguments;
class Output;

enum ExitCode : int {
    kExitSuccess = 0,
    kExitFailure = 1,
    kExitUsage = 2,
    kExitTransfer = 3, // a download failed; the help of the command names it
};

// An option of a command. One without a value name is a switch.
struct Option {
    const wchar_t* name = nullptr;
    const wchar_t* valueName = nullptr;
    const wchar_t* help = nullptr;
    wchar_t letter = 0; // of the short form, such as -o; 0 for none
};

// A command, or a group of commands: a group has children and no function to run. Help texts are in the
// imperative ("Print the value of an item") and without a full stop; those of options begin in lower case.
// NOLINTBEGIN(readability-redundant-member-init): a field without an initialiser must be named in each
// command.
struct Command {
    const wchar_t* name = nullptr;
    const wchar_t* summary = nullptr;
    // The operands as the usage line shows them, optional ones last and in brackets: "FILE [LIST]". One that
    // may be repeated is the last: "[FILE...]".
    const wchar_t* operands = L"";
    const wchar_t* help = L"";
    // Returns text for the help that is made from a table; may be null.
    std::wstring (*details)() = nullptr;
    std::span<const Option> options = {};
    ExitCode (*run)(const Arguments& arguments, Output& out) = nullptr;
    std::span<const Command> children = {};
};
// NOLINTEND(readability-redundant-member-init)

// Thrown by a command, at any depth, to end it with a message and an exit code.
struct CommandError {
    ExitCode code = kExitFailure;
    std::wstring message;
};

[[noreturn]] inline void Fail(std::wstring message) { throw CommandError{kExitFailure, std::move(message)}; }
[[noreturn]] inline void FailUsage(std::wstring message) {
    throw CommandError{kExitUsage, std::move(message)};
}

} // namespace vlm
