// Dates as digits only, "YYYYMMDDhhmmss".
//
// Threads: no shared state.
#pragma once

#include "text/string.h"

#include <windows.h>

namespace vxut {

// Whether a text has digits only; the empty text has.
bool IsDigits(const String& text);

// Whether the text is 8 or 14 digits.
bool IsCompactDate(const String& text);

// Reads as many fields as the text has. Nothing is checked; a field that is missing or no number is 0.
SYSTEMTIME ParseCompactDate(const String& text);

String CompactDate(const SYSTEMTIME& time);

} // namespace vxut
