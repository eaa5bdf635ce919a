// Call stacks as return addresses and module names, without symbols. All functions may be called on any
// thread.
#pragma once

#include <windows.h>

#include <cstdint>

namespace vxut {

// Captures up to capacity return addresses of the current thread, without the first skip frames. Returns
// their number: 0 if the system has no such service.
uint32_t CaptureStack(uint32_t skip, void** frames, uint32_t capacity);

// Returns how many frames at the top of a captured stack lie in the module that this code is linked into.
uint32_t LeadingOwnFrames(void* const* frames, uint32_t count);

// Finds the path of the module that contains an address; the path is empty if there is none. Returns false if
// no memory is allocated at the address.
bool ModuleOfAddress(const void* address, wchar_t (&path)[MAX_PATH]);

// Writes the modules of up to 20 callers to the debug channel, one line each without a module column, and an
// empty line at the end. The leading frames of the library itself are left out, and after them skip frames.
// Writes nothing if skip is above 256.
void DebugWriteStackTrace(uint32_t skip);

// Writes the address ranges of the modules of the process to the debug channel, unless nobody listens.
void DebugWriteModules();

} // namespace vxut
