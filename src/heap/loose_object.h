// Objects without a heap: blocks of the process heap that begin with their size, a 64-bit number. The
// functions take no lock and may be called on any thread.
#pragma once

#include <cstdint>

namespace vxut {

// Allocates an object, which the caller frees with FreeLooseObject(). Of the flags only UTIL_OBJECT_ZERO and
// UTIL_OBJECT_FILL count. Returns null if memory is short.
void* AllocLooseObject(int32_t size, uint32_t flags);
// Frees an object. Returns UTIL_ERR_OBJECT, and changes nothing, for a pointer to anything else.
int32_t FreeLooseObject(void* object);
// Returns the number before an object, or UTIL_ERR_OBJECT if it cannot be read. The object is not looked up.
int32_t SizeLooseObject(const void* object);

} // namespace vxut
