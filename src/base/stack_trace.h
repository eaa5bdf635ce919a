// The cheap call stack: return addresses and module names, without symbols.
#pragma once

#include <windows.h>

#include <cstdint>

namespace vxut {

// Captures return addresses of the current thread, after leaving out the first skip frames. Gives their
// number, 0 where the system has no such service.
uint32_t CaptureStack(uint32_t skip, void** frames, uint32_t capacity);

// The path of the module that an address lies in, empty if it lies in none. False for an address of nothing.
bool ModuleOfAddress(const void* address, wchar_t (&path)[MAX_PATH]);

// Writes the modules of up to 20 callers to the debug channel, one line each without a module column, after
// leaving out the first skip frames, and an empty line at the end. More than 256 frames to skip write
// nothing.
void DebugWriteStackTrace(uint32_t skip);

// Writes where the modules of the process lie in memory to the debug channel.
void DebugWriteModules();

} // namespace vxut
