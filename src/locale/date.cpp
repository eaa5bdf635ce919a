#include "locale/date.h"

namespace vxut {
namespace {

// The numbers are those of the classic conversion between calendar dates and Julian days. All dates are
// computed in years that begin in March, so that the leap day is the last one.
constexpr double kDaysInJulianYear = 365.25;
constexpr double kDaysInGregorianCentury = 36524.25;
constexpr double kDaysInMonth = 30.6001;
constexpr double kFirstGregorianDate = 15821015.0; // as digits
constexpr int32_t kFirstGregorianDay = 2299161;
constexpr int32_t kFirstDayOfYear1 = 1721424;

int32_t Whole(double value) { return static_cast<int32_t>(value); }

int32_t GregorianCorrection(int32_t year) {
    const int32_t century = year / 100;
    return 2 - century + century / 4;
}

// Precondition: the month is 1 to 12.
int32_t JulianDayOf(int32_t year, int32_t month, int32_t day) {
    if (year < 1) ++year; // there is no year 0
    if (month < 3) {
        --year;
        month += 12;
    }
    const bool isGregorian = month * 100.0 + year * 10000.0 + day >= kFirstGregorianDate;
    return Whole((month + 1) * kDaysInMonth) + day + Whole(year * kDaysInJulianYear) + 1720994 +
           (isGregorian ? GregorianCorrection(year) : 0);
}

} // namespace

clsDate::clsDate(int32_t year, int32_t month, int32_t day) {
    const int32_t months = month - 1;
    const int32_t years = (months < 0 ? months - 11 : months) / 12; // rounded down
    year += years;
    month -= years * 12;
    SetJulianDay(JulianDayOf(year, month, day));
    if (year_ == year && month_ == month && day_ == day) return;
    julianDay_ = kInvalid;
    year_ = month_ = day_ = dayOfWeek_ = 0;
}

clsDate clsDate::LastOfMonth(int32_t year, int32_t month) {
    clsDate date(year, month + 1, 1);
    date.Add(-1);
    return date;
}

void clsDate::SetJulianDay(int32_t julianDay) {
    julianDay_ = julianDay;
    int32_t day = julianDay + 1;
    if (day >= kFirstGregorianDay) {
        const int32_t century = Whole((day - 1867216.25) / kDaysInGregorianCentury);
        day += 1 + century - century / 4;
    }
    const int32_t shifted = day + (day < kFirstDayOfYear1 ? 1158 : 1524);
    const int32_t year = Whole((shifted - 122.1) / kDaysInJulianYear);
    const int32_t dayOfYear = shifted - Whole(year * kDaysInJulianYear);
    const int32_t month = Whole(dayOfYear / kDaysInMonth);
    day_ = dayOfYear - Whole(month * kDaysInMonth);
    month_ = month < 14 ? month - 1 : month - 13;
    year_ = month_ > 2 ? year - 4716 : year - 4715;
    dayOfWeek_ = (julianDay - firstDayOfWeek_ + 3) % 7 + 1;
}

} // namespace vxut
