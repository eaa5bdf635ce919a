// What happens when a process loads and unloads the library.
#pragma once

#include <windows.h>

namespace vxut {

// Load and unload never fail. The library's entry point calls them under the loader's lock.
void Attach(HMODULE library);
void Detach();
// Unload because the process ends: no lock is waited for, and a fault does not keep the process from ending.
void DetachAtProcessEnd();

} // namespace vxut
