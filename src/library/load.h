// What happens when a process loads and unloads the library.
#pragma once

#include <windows.h>

namespace vxut {

// Load and unload never fail. The library's entry point calls them under the loader's lock.
void Attach(HMODULE library);
void Detach();

} // namespace vxut
