#include "host/arguments.h"

#include <algorithm>
#include <cwchar>

namespace vlm {

namespace {

constexpr wchar_t kEndOfOptions[] = L"--";

// A word with a single dash is an operand: -5 is a number.
bool IsOption(const std::wstring& word) { return word.size() > 2 && word.starts_with(L"--"); }

// The long form of a word; the word itself if it is no short form.
std::wstring LongForm(const Command& command, const std::wstring& word) {
    if (word.size() != 2 || word[0] != L'-') return word;
    for (const Option& option : command.options)
        if (option.letter == word[1]) return std::wstring(L"--") + option.name;
    return word;
}

const Option& FindOption(const Command& command, const std::wstring& name) {
    for (const Option& option : command.options)
        if (name == option.name) return option;
    FailUsage(L"unknown option --" + name);
}

} // namespace

Arguments::Arguments(const Command& command, std::span<const std::wstring> words) {
    bool optionsEnded = false;
    for (size_t index = 0; index < words.size(); ++index) {
        const std::wstring word = LongForm(command, words[index]);
        if (!optionsEnded && word == kEndOfOptions)
            optionsEnded = true;
        else if (!optionsEnded && IsOption(word))
            index += TakeOption(command, word, words.subspan(index + 1));
        else
            operands_.push_back(word);
    }
    CheckCount(command);
}

const std::wstring& Arguments::Operand(size_t index) const {
    static const std::wstring absent;
    return HasOperand(index) ? operands_[index] : absent;
}

const std::wstring* Arguments::Value(const std::wstring& option) const {
    const auto found = options_.find(option);
    return found == options_.end() ? nullptr : &found->second;
}

// Stores the option of a word in the long form. Returns how many of the words that follow its value takes.
size_t Arguments::TakeOption(const Command& command, const std::wstring& longForm,
                             std::span<const std::wstring> following) {
    const std::wstring word = longForm.substr(2);
    const size_t equals = word.find(L'=');
    const std::wstring name = word.substr(0, equals);
    const Option& option = FindOption(command, name);
    const bool hasInlineValue = equals != std::wstring::npos;
    if (!option.valueName) {
        if (hasInlineValue) FailUsage(L"option --" + name + L" takes no value");
        options_[name] = L"";
        return 0;
    }
    if (hasInlineValue) {
        options_[name] = word.substr(equals + 1);
        return 0;
    }
    if (following.empty()) FailUsage(L"option --" + name + L" requires a value: " + option.valueName);
    options_[name] = following[0];
    return 1;
}

void Arguments::CheckCount(const Command& command) const {
    const std::wstring usage = command.operands;
    const size_t all = usage.empty() ? 0 : std::count(usage.begin(), usage.end(), L' ') + size_t{1};
    const size_t needed = all - std::count(usage.begin(), usage.end(), L'[');
    if (operands_.size() < needed) FailUsage(L"too few arguments");
    const bool isEndless = usage.ends_with(L"...]");
    if (!isEndless && operands_.size() > all) FailUsage(L"unexpected argument: " + operands_[all]);
}

bool IsHelpWanted(std::span<const std::wstring> words) {
    const auto end = std::find(words.begin(), words.end(), kEndOfOptions);
    return std::any_of(words.begin(), end,
                       [](const auto& word) { return word == L"--help" || word == L"-h"; });
}

} // namespace vlm
