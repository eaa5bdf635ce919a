// The scan of a printf format that comes before formatting: how long the text can get, and whether its
// pointers are good.
#pragma once

#include <cstdarg>
#include <cstdint>

namespace vxut {

// Gives the units that the text may need, without a terminator; -1 if an argument of %s or %n is bad.
// Arguments are read from a copy of the list. The format is wide and Microsoft's.
int64_t ScanFormat(const wchar_t* format, va_list arguments);

} // namespace vxut
