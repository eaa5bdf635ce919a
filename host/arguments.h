// The operands and options of one call, checked against what the command declares.
#pragma once

#include "host/command.h"

#include <map>
#include <span>
#include <string>
#include <vector>

namespace vlm {

// Options begin with two dashes and stand anywhere: "--name value", "--name=value". "--" ends them.
class clsArguments {
public:
    // Throws a usage error.
    clsArguments(const Command& command, std::span<const std::wstring> words);

    // Empty if it was not given.
    const std::wstring& Operand(size_t index) const;
    bool HasOperand(size_t index) const { return index < operands_.size(); }
    bool Has(const std::wstring& option) const { return options_.count(option) != 0; }
    // Null if it was not given.
    const std::wstring* Value(const std::wstring& option) const;

private:
    size_t TakeOption(const Command& command, std::span<const std::wstring> words);
    void CheckCount(const Command& command) const;

    std::vector<std::wstring> operands_;
    std::map<std::wstring, std::wstring> options_;
};

bool IsHelpWanted(std::span<const std::wstring> words);

} // namespace vlm
