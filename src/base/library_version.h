// The version of the library, as its interfaces report it. The version resource and the manifest repeat it.
#pragma once

#include <cstdint>

namespace vxut {

inline constexpr uint32_t kMajorVersion = 21;
inline constexpr uint32_t kMinorVersion = 1;

} // namespace vxut
