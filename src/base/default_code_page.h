// The code page of narrow text that names none: the system's ANSI code page until a host chooses another.
//
// Process-wide; any thread may read and set it.
#pragma once

#include <cstdint>

namespace vxut {

// Returns the code page as it was set: 0 (CP_ACP) means the system's ANSI code page.
uint32_t DefaultCodePage() noexcept;

// Only the low 16 bits count.
void SetDefaultCodePage(uint32_t codePage) noexcept;

} // namespace vxut
