// Conversion between code pages and 16-bit units, with the flags that the system accepts for each code page.
#pragma once

#include <cstdint>

namespace vxut {

// Converts narrow text with MultiByteToWideChar(). length is in bytes, -1 for a terminated text, whose
// terminator is converted too. Returns the units written, or the units needed if capacity is 0; 0 if the
// conversion fails, with the reason as last error.
int WidenText(uint32_t codePage, const char* text, int length, wchar_t* target, int capacity) noexcept;

// Converts wide text with WideCharToMultiByte(), in the same way. Units without an equivalent become the code
// page's default character.
int NarrowText(uint32_t codePage, const wchar_t* text, int length, char* target, int capacity) noexcept;

} // namespace vxut
