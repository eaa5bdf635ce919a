// The names that threads have in the lines of the debug channel.
#pragma once

#include <windows.h>

namespace vxut {

// Enters a thread's name, which is not copied, or removes it. The name stays good until it is removed.
void SetThreadName(DWORD threadId, const char* name);

// Null if the thread has none.
const char* FindThreadName(DWORD threadId);

} // namespace vxut
