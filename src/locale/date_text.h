// Dates as users of a locale write and read them.
//
// Threads: the functions may be called on any thread and wait for none.
#pragma once

#include "text/string.h"

#include <windows.h>

#include <cstdint>

namespace vxut {

// Results of ParseDateText(). The values are those of the exports.
enum DateStatus : int32_t { kDateOk = 0, kDateFailed = -52 };

enum DateParseFlags : uint32_t {
    kDateExpandYear = 1,     // years below 100 are those of 1930 to 2029
    kDateNeedsAllFields = 2, // a missing field is a failure; it is filled in all the same
};

// Reads a date, a time or both, as they are written in the locale or in ISO 8601; the day of week is not
// computed. Missing fields of the date are those of today, and a blank text is the current local time. Fails
// for other texts and for dates that do not exist; the result then has what was read.
//
// Callers rely on the oddities: a bare number is the year, "3.5" is a day and a year, "3.5." a day and a
// month, and "12 AM" is noon.
DateStatus ParseDateText(uint32_t lcid, const String& text, SYSTEMTIME& result, uint32_t flags);

// Writes a date in the short form of the locale, with the time unless that is midnight. Null is now. A date
// that cannot be written becomes that of today; dates before 1601, which the system does not format, are
// written after the locale's picture.
String DateText(uint32_t lcid, const SYSTEMTIME* time);

} // namespace vxut
