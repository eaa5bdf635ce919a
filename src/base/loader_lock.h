// The lock of the system's loader, which it holds while it calls entry points of libraries.
#pragma once

namespace vxut {

// Whether no other thread holds the lock. False also if the system does not say. Code that another thread may
// wait for while that holds the lock asks before it loads a library, finds a module or reads a resource.
bool IsLoaderFree();

} // namespace vxut
