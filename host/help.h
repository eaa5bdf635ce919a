// The help of a command, composed from its declaration.
#pragma once

#include "host/command.h"

#include <string>

namespace vlm {

// Path is the command with its groups, as typed: "vlm profile get".
std::wstring UsageLine(const std::wstring& path, const Command& command);
std::wstring HelpText(const std::wstring& path, const Command& command);

// A line of two columns; the second one starts at a fixed column.
std::wstring HelpRow(const std::wstring& left, const std::wstring& right);

} // namespace vlm
