// The cheap call stack: return addresses and module names, without symbols.
#pragma once

#include <cstdint>

namespace vxut {

// Captures return addresses of the current thread, after leaving out the first skip frames. Gives their
// number, 0 where the system has no such service.
uint32_t CaptureStack(uint32_t skip, void** frames, uint32_t capacity);

// Writes the modules of up to 20 callers to the debug channel, one line each, after leaving out the first
// skip frames, and an empty line at the end. More than 256 frames to skip write nothing.
void DebugWriteStackTrace(uint32_t skip);

} // namespace vxut
