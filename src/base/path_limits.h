// Sizes of paths, in units with the terminator.
#pragma once

#include "util/path.h"

namespace vxut {

inline constexpr size_t kPathUnits = UTIL_PATH_UNITS;      // the longest path of the interface
inline constexpr size_t kPathBufferUnits = kPathUnits + 4; // of buffers that system functions write to

} // namespace vxut
