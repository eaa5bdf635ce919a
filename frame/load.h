// What happens when a process loads and unloads the library.
#pragma once

#include <windows.h>

namespace vxut {

// Load and unload never fail. The library's entry point calls them under the loader's lock.
void Attach(HMODULE library);
void Detach();

// The services that Detach() shuts down, in this order, before the debug channel.
enum class UnloadStep { kHandleLists, kProfileItemPool, kCount };

// Sets what a step does. A service does so when it first comes to life.
void SetUnloadStep(UnloadStep step, void (*shutDown)());

} // namespace vxut
