// Objects without a heap: blocks of the process heap that begin with their size. They need no lock.
#pragma once

#include <cstdint>

namespace vxut {

// Null when memory is short. Of the flags those count that clear or fill an object.
void* AllocLooseObject(int32_t size, uint32_t flags);
// UTIL_OK, or UTIL_ERR_OBJECT for anything but a live loose object, which then is left alone.
int32_t FreeLooseObject(void* object);
// What stands in front of an object; UTIL_ERR_OBJECT if that cannot be read.
int32_t SizeLooseObject(const void* object);

} // namespace vxut
