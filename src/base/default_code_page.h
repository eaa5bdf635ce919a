// The code page of narrow text that names none: the system's ANSI code page until a host chooses another.
#pragma once

#include <cstdint>

namespace vxut {

uint32_t DefaultCodePage() noexcept;

// Only the low 16 bits count.
void SetDefaultCodePage(uint32_t codePage) noexcept;

} // namespace vxut
