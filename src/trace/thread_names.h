// The names of threads in the lines of the debug channel. For use by all threads; takes a lock under which
// nothing else is called.
#pragma once

#include <windows.h>

namespace vxut {

// Sets a thread's name; null removes it. The text is not copied and has to stay valid until it is removed.
void SetThreadName(DWORD threadId, const char* name);

// Null if the thread has no name.
const char* FindThreadName(DWORD threadId);

} // namespace vxut
