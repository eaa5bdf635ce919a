// Operations on SYSTEMTIME that dates, documents and files share.
//
// Threads: no shared state.
#pragma once

#include "text/string.h"

#include <windows.h>

#include <cstdint>

namespace vxut {

// The day of week of a time that does not know its own.
constexpr WORD kNoDayOfWeek = 0xFFFF;

// The value that stands for "no time": all zero but the day of week. Every conversion starts from it.
constexpr SYSTEMTIME EmptyTime() noexcept {
    return {.wYear = 0,
            .wMonth = 0,
            .wDayOfWeek = kNoDayOfWeek,
            .wDay = 0,
            .wHour = 0,
            .wMinute = 0,
            .wSecond = 0,
            .wMilliseconds = 0};
}

// Returns the empty time if the system refuses the file time. With toLocalTime the result is in the zone of
// the user.
SYSTEMTIME SystemTimeOf(const FILETIME& time, bool toLocalTime = false) noexcept;

// Whether a time is before another. Compares the fields from the year to the millisecond; the day of week
// does not count. The empty time is before all others.
bool IsBefore(const SYSTEMTIME& time, const SYSTEMTIME& other) noexcept;

// Moves a time by milliseconds of either sign. A time that the system cannot convert becomes the empty time.
void AddMilliseconds(SYSTEMTIME& time, int64_t milliseconds) noexcept;

} // namespace vxut
