#include "locale/date.h"
#include "locale/date_patterns.h"
#include "locale/date_text.h"

#include <cstdlib>
#include <optional>

namespace vxut {
namespace {

// The fields of a date as they were read; 0 is missing.
struct DateFields {
    int year = 0;
    int month = 0;
    int day = 0;
};

int Number(const clsRegExMatchList& groups, int group) { return _wtoi(groups.get(group).text.Text()); }

DateFields FieldsOf(const clsRegExMatchList& groups, DateFieldOrder order) {
    const int first = Number(groups, kDateFirst);
    const int second = Number(groups, kDateSecond);
    const int third = Number(groups, kDateThird);
    switch (order) {
        case kMonthDayYear:
            return {.year = third, .month = first, .day = second};
        case kYearMonthDay:
            return {.year = first, .month = second, .day = third};
        default:
            return {.year = third, .month = second, .day = first};
    }
}

// Returns whether a field was missing.
bool FillIn(DateFields& fields) {
    SYSTEMTIME today;
    GetLocalTime(&today);
    const bool isIncomplete = fields.day == 0 || fields.month == 0 || fields.year == 0;
    if (fields.day == 0) fields.day = today.wDay;
    if (fields.month == 0) fields.month = today.wMonth;
    if (fields.year == 0) fields.year = today.wYear;
    return isIncomplete;
}

// Two digits of a year mean one between 1930 and 2029.
void ExpandYear(int& year) {
    if (year < 100) year += year < 30 ? 2000 : 1900;
}

// "12 AM" stays 12: callers rely on it.
WORD HourOf(const clsRegExMatchList& groups, DateForm form) {
    const int hour = Number(groups, kDateHour);
    const bool isAfternoon =
        form == DateForm::kLocale12Hours && groups.get(kDateHalf).text.Upper()[0] == L'P';
    return static_cast<WORD>(isAfternoon && hour < 12 ? hour + 12 : hour);
}

// Whether the date exists, and is the one that was read: larger numbers do not fit into the record.
bool Exists(const SYSTEMTIME& time, const DateFields& fields) {
    const clsDate date(clsDate(time.wYear, time.wMonth, time.wDay).JulianDay());
    return date.Year() == fields.year && date.Month() == fields.month && date.Day() == fields.day;
}

DateStatus Assign(SYSTEMTIME& result, const clsRegExMatchList& groups, DateForm form, DateFieldOrder order,
                  uint32_t flags) {
    DateFields fields = FieldsOf(groups, form == DateForm::kIso24Hours ? kYearMonthDay : order);
    const bool isIncomplete = FillIn(fields);
    if (flags & kDateExpandYear) ExpandYear(fields.year);
    result.wYear = static_cast<WORD>(fields.year);
    result.wMonth = static_cast<WORD>(fields.month);
    result.wDay = static_cast<WORD>(fields.day);
    result.wHour = HourOf(groups, form);
    result.wMinute = static_cast<WORD>(Number(groups, kDateMinute));
    result.wSecond = static_cast<WORD>(Number(groups, kDateSecondOfTime));
    if (!Exists(result, fields)) return kDateFailed;
    return isIncomplete && (flags & kDateNeedsAllFields) ? kDateFailed : kDateOk;
}

} // namespace

DateStatus ParseDateText(uint32_t lcid, const String& text, SYSTEMTIME& result, uint32_t flags) {
    result = {};
    String trimmed(text);
    trimmed.TrimRight();
    trimmed.TrimLeft();
    if (trimmed.IsEmpty()) {
        GetLocalTime(&result);
        return kDateOk;
    }
    std::optional<clsLocaleDateInfo> ownInfo;
    const clsLocaleDateInfo& info =
        lcid == clsLocaleDateInfo::OfUser().Lcid() ? clsLocaleDateInfo::OfUser() : ownInfo.emplace(lcid);
    clsRegExMatchList groups;
    const DateForm form = MatchDate(info, trimmed, groups);
    if (form == DateForm::kNone) return kDateFailed;
    return Assign(result, groups, form, info.FieldOrder(), flags);
}

} // namespace vxut
