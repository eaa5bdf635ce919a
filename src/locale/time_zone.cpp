#include "locale/time_zone.h"

#include "locale/date.h"
#include "locale/system_time.h"

#include <bit>
#include <cstdint>

namespace vxut {
namespace {

constexpr int64_t kTicksInMinute = 600'000'000;
constexpr WORD kLastInMonth = 5;

// The days from one day of the week to the next other one, both counted from the same day.
int32_t DaysFrom(int32_t dayOfWeek, int32_t target) { return (target - dayOfWeek + 7) % 7; }

// The day of a month on which the weekday of a rule falls for the n-th time.
WORD DayOfRule(const SYSTEMTIME& rule, WORD year) {
    const int32_t target = rule.wDayOfWeek + 1;
    if (rule.wDay == kLastInMonth) {
        clsDate date = clsDate::LastOfMonth(year, rule.wMonth);
        date.Add(-DaysFrom(target, date.DayOfWeek()));
        return static_cast<WORD>(date.Day());
    }
    clsDate date(year, rule.wMonth, 1);
    date.Add(DaysFrom(date.DayOfWeek(), target));
    if (rule.wDay > 1) date.Add(7 * (rule.wDay - 1));
    return static_cast<WORD>(date.Day());
}

// The time of a transition in a year. A rule with a year is a date already, one without a month is no rule.
SYSTEMTIME Transition(const SYSTEMTIME& rule, WORD year) {
    SYSTEMTIME time = rule;
    time.wDayOfWeek = kNoDayOfWeek;
    time.wMilliseconds = 0;
    if (rule.wMonth == 0) return time;
    time.wYear = year;
    if (rule.wYear == 0) time.wDay = DayOfRule(rule, year);
    return time;
}

// Returns a zero record if there is no such time.
SYSTEMTIME MovedByMinutes(const SYSTEMTIME& time, int64_t minutes) {
    FILETIME fileTime;
    if (!SystemTimeToFileTime(&time, &fileTime)) return {};
    const uint64_t ticks =
        std::bit_cast<uint64_t>(fileTime) + static_cast<uint64_t>(minutes * kTicksInMinute);
    fileTime = std::bit_cast<FILETIME>(ticks);
    SYSTEMTIME moved;
    return FileTimeToSystemTime(&fileTime, &moved) ? moved : SYSTEMTIME{};
}

} // namespace

SYSTEMTIME UtcOfLocalTime(const SYSTEMTIME& local) noexcept {
    SYSTEMTIME utc = EmptyTime();
    return TzSpecificLocalTimeToSystemTime(nullptr, &local, &utc) ? utc : EmptyTime();
}

SYSTEMTIME LocalTimeOfUtc(const SYSTEMTIME& utc) noexcept {
    SYSTEMTIME local = EmptyTime();
    return SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local) ? local : EmptyTime();
}

scDaylightSaving DaylightSavingOf(WORD year) noexcept {
    TIME_ZONE_INFORMATION zone = {};
    const DWORD state = GetTimeZoneInformation(&zone);
    if (state == TIME_ZONE_ID_UNKNOWN || state == TIME_ZONE_ID_INVALID) return {};
    return {.start = MovedByMinutes(Transition(zone.DaylightDate, year), zone.Bias),
            .end = MovedByMinutes(Transition(zone.StandardDate, year), zone.Bias + zone.DaylightBias)};
}

} // namespace vxut
