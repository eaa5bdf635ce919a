// The operands and options of a command line, checked against the declaration of the command.
#pragma once

#include "host/command.h"

#include <map>
#include <span>
#include <string>
#include <vector>

namespace vlm {

// Options begin with two dashes and may appear anywhere: "--name value", "--name=value". Some have a short
// form: "-n value". "--" ends the options.
class Arguments {
public:
    // Throws a usage error if the words do not match the declaration.
    Arguments(const Command& command, std::span<const std::wstring> words);

    // Empty if there is no such operand.
    const std::wstring& Operand(size_t index) const;
    bool HasOperand(size_t index) const { return index < operands_.size(); }
    bool Has(const std::wstring& option) const { return options_.count(option) != 0; }
    // The value of an option. Null if the option is not given.
    const std::wstring* Value(const std::wstring& option) const;

private:
    size_t TakeOption(const Command& command, const std::wstring& longForm,
                      std::span<const std::wstring> following);
    void CheckCount(const Command& command) const;

    std::vector<std::wstring> operands_;
    std::map<std::wstring, std::wstring> options_;
};

bool IsHelpWanted(std::span<const std::wstring> words);

} // namespace vlm
