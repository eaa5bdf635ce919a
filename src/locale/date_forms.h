// Readers of dates in forms that other programs write.
//
// Threads: no shared state.
#pragma once

#include "text/string.h"

#include <windows.h>

namespace vxut {

// Reads the date of an Internet message, "Fri, 13 Nov 2026 16:30:00 +0100", found anywhere in the text. A
// numeric zone turns the result into UTC; a named zone does not, callers rely on it. Fields are not checked;
// a time that the system cannot convert becomes the empty time.
// Returns true also if there is no such date; the result is then unchanged.
// Source: RFC 822 and RFC 2822, the obsolete zones included.
bool ParseInternetDate(SYSTEMTIME& result, const String& text);

// Reads a date of ISO 8601, "2026-11-13T16:30:00+01:00", into UTC. Without an offset, also with "Z", the text
// is local time; callers rely on it. A fraction is dropped. Fields are not checked; a time that the system
// cannot convert becomes the empty time. Returns false, with the fields read so far in the result, if year,
// month or day is missing or the zone is cut short. Source: ISO 8601:2004, calendar dates.
bool ParseIso8601Date(SYSTEMTIME& result, const String& text);

// Reads whatever the automation library of the system takes for a date. Returns false, with an unchanged
// result, if it refuses the text or reads the date zero.
bool ParseVariantDate(SYSTEMTIME& result, const String& text);

// Reads a date in any of these forms, or as up to 14 digits, "YYYYMMDDhhmmss". A blank text is the current
// local time. Returns the empty time if no reader takes the text.
SYSTEMTIME ParseAnyDate(const String& text);

} // namespace vxut
