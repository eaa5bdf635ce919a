// Formatting as Microsoft's printf does, with probed arguments and bounded padding.
#pragma once

#include <cstdarg>
#include <cstdint>

namespace vxut {

// Widths and precisions of a format may add this many units in all.
constexpr int64_t kMostFormatPadding = int64_t{1} << 20;

// Returns an upper bound of the units that the text needs, without a terminator. Returns -1 if an argument of
// %s, %Z or %n cannot be read or written, if the padding exceeds kMostFormatPadding, or if format itself is
// null or cannot be read.
int64_t MeasureFormat(const wchar_t* format, va_list arguments);

// Writes the text, cut to capacity - 1 units, with its terminator. Returns its length; -1 if an argument can
// no longer be read. Preconditions: MeasureFormat() accepted the arguments, and capacity is at least 1.
int64_t WriteFormat(wchar_t* target, int64_t capacity, const wchar_t* format, va_list arguments);

} // namespace vxut
