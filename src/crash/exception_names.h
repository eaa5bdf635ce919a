// The names of exception codes.
#pragma once

#include <windows.h>

namespace vxut {

// The name of a code, else the system's text for it, else an empty text. Valid until the next call. Used by
// one thread at a time, under the report lock.
const wchar_t* ExceptionName(DWORD code);

} // namespace vxut
