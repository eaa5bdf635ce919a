// The order in which services are shut down when the library is unloaded.
#pragma once

namespace vxut {

// The services in the order of their shut-down, which is before that of the debug channel.
enum class UnloadStep { kCbtHook, kHelpHook, kHandleLists, kProfileItemPool, kExceptionProtection, kCount };

// Registers the function that shuts a service down. A service calls this when it is first used, on any
// thread; a later registration of the same step replaces the earlier one.
void SetUnloadStep(UnloadStep step, void (*shutDown)());

// Calls the registered functions in their order, under the loader's lock. They stay registered.
void RunUnloadSteps();

} // namespace vxut
