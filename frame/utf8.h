// UTF-8 as the library reads it: one to three bytes, which make one 16-bit unit.
#pragma once

namespace vxut {

// Whether a zero-terminated text is well-formed UTF-8 in its shortest form. Characters from U+10000 on are
// not; the empty text is.
bool IsValidUtf8(const char* bytes);

} // namespace vxut
