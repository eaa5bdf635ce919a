// Sizes of paths, in units with the terminator, and of names, without.
#pragma once

#include "util/path.h"

#include <cstddef>
#include <cstdint>

namespace vxut {

inline constexpr size_t kPathUnits = UTIL_PATH_UNITS;      // the longest path of the interface
inline constexpr int64_t kMostNameUnits = 255;             // between two separators, on every file system
inline constexpr size_t kPathBufferUnits = kPathUnits + 4; // of buffers that system functions write to

} // namespace vxut
