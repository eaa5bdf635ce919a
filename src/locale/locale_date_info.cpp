#include "locale/locale_date_info.h"

#include <windows.h>

namespace vxut {
namespace {

constexpr int kFieldUnits = 10;

String FieldOf(uint32_t lcid, LCTYPE type, const wchar_t* fallback) {
    wchar_t field[kFieldUnits];
    return GetLocaleInfoW(lcid, type, field, kFieldUnits) ? field : fallback;
}

// The system counts the orders differently: 0 is its month-day-year.
DateFieldOrder FieldOrderOf(uint32_t lcid) {
    const String order = FieldOf(lcid, LOCALE_IDATE, L"");
    if (order == L"0") return kMonthDayYear;
    return order == L"2" ? kYearMonthDay : kDayMonthYear;
}

} // namespace

clsLocaleDateInfo::clsLocaleDateInfo(uint32_t lcid)
    : lcid_(lcid),
      fieldOrder_(FieldOrderOf(lcid)),
      dateSeparator_(FieldOf(lcid, LOCALE_SDATE, L".")),
      timeSeparator_(FieldOf(lcid, LOCALE_STIME, L":")) {}

const clsLocaleDateInfo& clsLocaleDateInfo::OfUser() {
    static const clsLocaleDateInfo info(GetUserDefaultLCID());
    return info;
}

} // namespace vxut
