// Paths of the library that the process has loaded, and of other modules.
#pragma once

#include <string>

namespace vlm {

std::wstring LibraryPath();

// The path of a module; null is the program.
std::wstring ModulePath(void* module);

} // namespace vlm
