// From the words of the command line to the command that they name.
#pragma once

#include "host/command.h"

#include <span>
#include <string>

namespace vlm {

// Runs the command of the tree below root, or tells its help on out. Failures go to errors.
ExitCode Dispatch(const Command& root, std::span<const std::wstring> words, clsOutput& out,
                  clsOutput& errors);

} // namespace vlm
