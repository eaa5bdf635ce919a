// Formatting as Microsoft's printf does, with checked arguments and bounded padding.
#pragma once

#include "text/unit_buffer.h"

#include <cstdarg>

namespace vxut {

// Formats into an empty text, up to the first zero unit, which %c may write. Returns false, with an
// unspecified text, if an argument of %s, %Z or %n cannot be read or written, if the padding exceeds
// kMostFormatPadding, or if format itself is null or cannot be read. Counters of %n are stored only if it
// returns true. Throws std::bad_alloc.
bool FormatChecked(clsUnitBuffer& target, const wchar_t* format, va_list arguments);

} // namespace vxut
