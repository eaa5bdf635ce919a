// Finds the command that the words of a command line name, and runs it.
#pragma once

#include "host/command.h"

#include <span>
#include <string>

namespace vlm {

// Runs a command of the tree below root, or writes its help to out. Words are the command line without the
// program. Messages go to errors. Throws nothing of its own.
ExitCode Dispatch(const Command& root, std::span<const std::wstring> words, Output& out, Output& errors);

} // namespace vlm
