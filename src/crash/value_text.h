// Values of a frame as text.
#pragma once

#include "util/debug_help.h"

#include <cstddef>

namespace vxut {

inline constexpr size_t kValueTextUnits = 160;

// Writes the text of a value, terminated. Allocates nothing; texts that the value points to are read from the
// process and may be unreadable.
void FormatValue(const DBGStackTraceValue& value, wchar_t (&text)[kValueTextUnits]);

} // namespace vxut
