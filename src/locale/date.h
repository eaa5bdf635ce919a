// A calendar date and its day number: arithmetic on dates.
//
// Dates before 15 October 1582 are in the Julian calendar, later ones in the Gregorian. The year before 1 is
// -1. Years are within +-1,000,000.
#pragma once

#include <cstdint>

namespace vxut {

class clsDate {
public:
    // The day number of a date that does not exist.
    static constexpr int32_t kInvalid = -1;

    // A month beyond 1 to 12 counts on into other years. A date that does not exist, such as 31 February, is
    // invalid, with all other fields 0.
    clsDate(int32_t year, int32_t month, int32_t day);
    // The date of a day number.
    explicit clsDate(int32_t julianDay) { SetJulianDay(julianDay); }
    clsDate(const clsDate&) = default;
    clsDate& operator=(const clsDate&) = default;
    virtual ~clsDate() = default;

    static clsDate LastOfMonth(int32_t year, int32_t month);

    bool IsValid() const noexcept { return julianDay_ != kInvalid; }
    // The number of the day in the count of Julian days, less one.
    int32_t JulianDay() const noexcept { return julianDay_; }
    int32_t Year() const noexcept { return year_; }
    int32_t Month() const noexcept { return month_; }
    int32_t Day() const noexcept { return day_; }
    int32_t DayOfWeek() const noexcept { return dayOfWeek_; } // 1 is Sunday

    // Moves a valid date by days of either sign.
    void Add(int32_t days) { SetJulianDay(julianDay_ + days); }

private:
    void SetJulianDay(int32_t julianDay);

    int32_t julianDay_ = kInvalid;
    int32_t year_ = 0;
    int32_t month_ = 0;
    int32_t day_ = 0;
    int32_t dayOfWeek_ = 0;
    int32_t firstDayOfWeek_ = 1;
};

} // namespace vxut
