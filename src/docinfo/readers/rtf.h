// Text of RTF groups.
//
// Threads: no shared state.
#pragma once

#include "text/string.h"

namespace vxut {

// Removes line ends, replaces "\'e4" by the character of that value, whatever the code page, also where a
// replacement made the escape, and makes one backslash of two. An escape of value 0 is removed. Takes time
// proportional to the length. Throws std::bad_alloc.
String RtfDecodeText(const String& text);

} // namespace vxut
