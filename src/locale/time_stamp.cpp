#include "locale/time_stamp.h"

#include "locale/system_time.h"

namespace vxut {
namespace {

constexpr int kTextUnits = 30;

String DayName(WORD dayOfWeek) {
    // The names of the system begin with Monday, its numbers with Sunday.
    return String::FromLocaleInfo(LOCALE_SDAYNAME1 + (dayOfWeek + 6u) % 7);
}

} // namespace

String TimeStampText(const SYSTEMTIME& time, bool compact) {
    String text;
    if (compact) {
        text.Format(L"%04d%02d%02d%02d%02d", time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute);
        return text;
    }
    wchar_t date[kTextUnits] = L"";
    wchar_t timeOfDay[kTextUnits] = L"";
    GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, date, kTextUnits);
    if (!GetTimeFormatW(LOCALE_USER_DEFAULT, TIME_NOSECONDS, &time, nullptr, timeOfDay, kTextUnits)) {
        const String reason = String::FromError(GetLastError());
        text.Format(L"[time %d:%02d:%02d.%03d is invalid: %s]\n", time.wHour, time.wMinute, time.wSecond,
                    time.wMilliseconds, reason.Text());
    } else if (time.wDayOfWeek != kNoDayOfWeek) {
        text.Format(L"%s, %s (%s)", date, timeOfDay, DayName(time.wDayOfWeek).Text());
    } else {
        text.Format(L"%s, %s", date, timeOfDay);
    }
    return text;
}

} // namespace vxut
