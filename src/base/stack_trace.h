// The cheap call stack: return addresses and module names, without symbols.
#pragma once

#include <windows.h>

#include <cstdint>

namespace vxut {

// Captures return addresses of the current thread, after leaving out the first skip frames. Gives their
// number, 0 where the system has no such service.
uint32_t CaptureStack(uint32_t skip, void** frames, uint32_t capacity);

// The number of frames before the first one outside the module that this code is linked into: its own part of
// a captured stack.
uint32_t LeadingOwnFrames(void* const* frames, uint32_t count);

// The path of the module that an address lies in, empty if it lies in none. False for an address of nothing.
bool ModuleOfAddress(const void* address, wchar_t (&path)[MAX_PATH]);

// Writes the modules of up to 20 callers to the debug channel, one line each without a module column, and an
// empty line at the end. The leading frames of the library itself are left out, and after them skip frames.
// Writes nothing if skip is above 256.
void DebugWriteStackTrace(uint32_t skip);

// Writes where the modules of the process lie in memory to the debug channel.
void DebugWriteModules();

} // namespace vxut
