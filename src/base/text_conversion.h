// The two code page conversions, with the flags that the system accepts.
#pragma once

#include <cstdint>

namespace vxut {

// MultiByteToWideChar: gives the units written, or needed when capacity is 0; 0 if it cannot be done.
int WidenText(uint32_t codePage, const char* text, int length, wchar_t* target, int capacity) noexcept;

// WideCharToMultiByte, in the same way.
int NarrowText(uint32_t codePage, const wchar_t* text, int length, char* target, int capacity) noexcept;

} // namespace vxut
