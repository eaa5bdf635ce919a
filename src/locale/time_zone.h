// The user's time zone: conversions and the change to daylight saving time.
//
// Threads: no shared state.
#pragma once

#include <windows.h>

namespace vxut {

// Convert between local time and UTC by the rules of the user's zone. A time that the system refuses becomes
// the empty time.
SYSTEMTIME UtcOfLocalTime(const SYSTEMTIME& local) noexcept;
SYSTEMTIME LocalTimeOfUtc(const SYSTEMTIME& utc) noexcept;

struct scDaylightSaving {
    SYSTEMTIME start;
    SYSTEMTIME end;
};

// Returns when daylight saving time begins and ends in a year, in UTC; zero records in a zone without it. The
// zone's present rules are applied, whatever the year.
scDaylightSaving DaylightSavingOf(WORD year) noexcept;

} // namespace vxut
