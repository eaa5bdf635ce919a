// A look at shortcut files before the system reads them, as some system code believes their lengths.
#pragma once

#include <cstdint>
#include <span>

namespace vxut {

// Returns whether the items, the place of the target, the texts and the blocks after them are inside the file
// and end there. Source: Shell Link Binary File Format.
bool IsShortcutSound(std::span<const uint8_t> bytes);

} // namespace vxut
