// Where the library lies that this process has loaded.
#pragma once

#include <string>

namespace vlm {

std::wstring LibraryPath();

// Of any module; null stands for the program.
std::wstring ModulePath(void* module);

} // namespace vlm
