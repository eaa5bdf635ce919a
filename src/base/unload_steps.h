// What services do when the library is unloaded.
#pragma once

namespace vxut {

// The services that are shut down at unload, in this order, before the debug channel.
enum class UnloadStep { kHandleLists, kProfileItemPool, kCount };

// Registers the function that shuts a service down. A service does so when it first comes to life; any thread
// may call it.
void SetUnloadStep(UnloadStep step, void (*shutDown)());

// Calls the registered functions in their order.
void RunUnloadSteps();

} // namespace vxut
