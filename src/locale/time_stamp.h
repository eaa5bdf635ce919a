// Times as text in reports.
#pragma once

#include "text/string.h"

#include <windows.h>

namespace vxut {

// Returns a time in the short form of the user's locale, without seconds, and with the name of the day if the
// time knows it: "11/13/2026, 4:30 PM (Friday)". A time of day that does not exist makes a text that says so.
// The compact form is "202611131630". May be called on any thread.
String TimeStampText(const SYSTEMTIME& time, bool compact = false);

} // namespace vxut
