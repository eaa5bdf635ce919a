// The help of a command, made from what it declares.
#pragma once

#include "host/command.h"

#include <string>

namespace vlm {

// Path is the command with its groups as a user types them: "vlm profile get".
std::wstring UsageLine(const std::wstring& path, const Command& command);
std::wstring HelpText(const std::wstring& path, const Command& command);

// Two columns, the second at a fixed place.
std::wstring HelpRow(const std::wstring& left, const std::wstring& right);

} // namespace vlm
