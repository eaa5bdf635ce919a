#include "tests/child/tasks.h"
#include "util/dates.h"

#include <cstdio>
#include <cwchar>

namespace vxut::test {
namespace {

void Print(const SYSTEMTIME& time) {
    if (time.wYear == 0)
        std::printf("0 ");
    else
        std::printf("%04u%02u%02u%02u%02u%02u ", time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute,
                    time.wSecond);
}

const AddChildTask zone("zone", [] {
    for (const uint16_t year : {2026, 2027}) {
        SYSTEMTIME start, end;
        UtilLocGetDSTStartAndEndInUTC(year, &start, &end);
        Print(start);
        Print(end);
    }
    for (const WORD month : {1, 7}) {
        SYSTEMTIME time = {2026, month, 0, 1, 12, 0, 0, 0};
        UtilLocConvertLocalTimeToUTCTime(&time);
        Print(time);
        UtilLocConvertUTCTimeToLocalTime(&time);
        if (month == 7) std::printf("%04u%02u%02u%02u0000", time.wYear, time.wMonth, time.wDay, time.wHour);
    }
    return 0;
});

const AddChildTask userDate("user-date", [] {
    wchar_t text[80];
    UtilDateTimeToLocaleString(L"20261113163000", text, 80);
    std::printf("%ls ", text);
    const wchar_t* const kAmbiguous[] = {L"3.4.2026", L"3/4/2026"};
    for (const wchar_t* date : kAmbiguous) {
        if (!UtilDateTimeFromLocaleString(date, text, 80, UTIL_DATE_NEEDS_ALL_FIELDS)) continue;
        std::printf("%ls", text);
        return 0;
    }
    std::printf("failed");
    return 0;
});

} // namespace
} // namespace vxut::test
