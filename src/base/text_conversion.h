// The two code page conversions, with the flags that the system accepts for each code page.
//
// Both return the number of units or bytes written, or needed if capacity is 0; 0 if the system cannot
// convert, with the reason as the last error. Lengths exclude a terminator, and none is written. Any thread.
#pragma once

#include <cstdint>

namespace vxut {

// By MultiByteToWideChar.
int WidenText(uint32_t codePage, const char* text, int length, wchar_t* target, int capacity) noexcept;

// By WideCharToMultiByte. Units without a counterpart become the default character of the system.
int NarrowText(uint32_t codePage, const wchar_t* text, int length, char* target, int capacity) noexcept;

} // namespace vxut
