#include "docinfo/readers/pdf_date.h"

#include "locale/system_time.h"
#include "text/shared_regex.h"

#include <cstdlib>

namespace vxut {
namespace {

constexpr wchar_t kTemplate[] = L"00000101000000Z00'00'";
constexpr int64_t kShortest = 2; // "D:"
constexpr int64_t kLength = 23;

// The sign is a range: letters and digits count as one too.
clsSharedRegEx datePattern(LR"(^D:(\d\d\d\d)(\d\d)(\d\d)(\d\d)(\d\d)(\d\d)([+-Z])(\d\d)'(\d\d)')",
                           kRegExUngreedy);
enum Group { kYear = 1, kMonth, kDay, kHour, kMinute, kSecond, kSign, kZoneHours, kZoneMinutes };

constexpr int64_t kMillisecondsInZoneMinute = int64_t{24} * 1000;

WORD Number(const String& digits) { return static_cast<WORD>(_wtoi(digits.Text())); }

String Completed(const String& text) {
    if (text.Length() < kShortest || text.Length() >= kLength) return text;
    return text + String(kTemplate).Right(kLength - text.Length());
}

} // namespace

SYSTEMTIME PdfDate(const String& text) {
    clsRegExMatchList groups;
    if (!datePattern.Match(Completed(text), &groups)) return EmptyTime();
    SYSTEMTIME time = {.wYear = Number(groups.get(kYear).text),
                       .wMonth = Number(groups.get(kMonth).text),
                       .wDayOfWeek = kNoDayOfWeek,
                       .wDay = Number(groups.get(kDay).text),
                       .wHour = Number(groups.get(kHour).text),
                       .wMinute = Number(groups.get(kMinute).text),
                       .wSecond = Number(groups.get(kSecond).text),
                       .wMilliseconds = 0};
    const int64_t offset =
        (Number(groups.get(kZoneHours).text) * 60 + Number(groups.get(kZoneMinutes).text)) *
        kMillisecondsInZoneMinute;
    if (offset != 0) AddMilliseconds(time, groups.get(kSign).text == L"-" ? offset : -offset);
    return time;
}

} // namespace vxut
