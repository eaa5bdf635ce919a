#include "locale/date.h"

#include "locale/system_time.h"
#include "locale/time_stamp.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <tuple>

namespace vxut {
namespace {

TEST(DateTest, AgreesWithTheSystemOnEveryDayOfSixHundredYears) {
    constexpr uint64_t kTicksInDay = 864'000'000'000;
    const int32_t first = clsDate(1601, 1, 1).JulianDay();
    for (int32_t day = 0; day < 600 * 366; ++day) {
        const SYSTEMTIME time =
            SystemTimeOf(std::bit_cast<FILETIME>(static_cast<uint64_t>(day) * kTicksInDay));
        const clsDate date(time.wYear, time.wMonth, time.wDay);
        ASSERT_EQ(date.JulianDay(), first + day) << time.wYear << '-' << time.wMonth << '-' << time.wDay;
        ASSERT_EQ(date.DayOfWeek(), time.wDayOfWeek + 1);
        const clsDate back(first + day);
        ASSERT_TRUE(back.Year() == time.wYear && back.Month() == time.wMonth && back.Day() == time.wDay);
    }
}

TEST(DateTest, CountsDaysThroughTheChangeOfCalendarAndTheMissingYear) {
    EXPECT_EQ(clsDate(1582, 10, 15).JulianDay() - clsDate(1582, 10, 4).JulianDay(), 1);
    EXPECT_EQ(clsDate(1, 1, 1).JulianDay() - clsDate(-1, 12, 31).JulianDay(), 1);
    EXPECT_EQ(clsDate(2000, 1, 1).JulianDay(), 2451544); // the Julian day of noon, less one
    EXPECT_TRUE(clsDate(1500, 2, 29).IsValid()) << "a leap year of the Julian calendar";
    int32_t last = clsDate(-4000, 1, 1).JulianDay();
    for (int32_t day = last; day < 2'500'000; day += 97) {
        const clsDate date(day);
        ASSERT_EQ(clsDate(date.Year(), date.Month(), date.Day()).JulianDay(), day) << date.Year();
    }
}

TEST(DateTest, DatesThatDoNotExistAreInvalid) {
    const std::tuple<int, int, int> kDates[] = {{2015, 2, 31}, {2015, 2, 29},   {1900, 2, 29}, {2015, 4, 31},
                                                {2015, 1, 0},  {1582, 10, 10},  {0, 1, 1},     {2015, 1, 32},
                                                {0, 0, 0},     {2015, 1, 65535}};
    for (const auto& [year, month, day] : kDates) {
        const clsDate date(year, month, day);
        EXPECT_FALSE(date.IsValid()) << year << '-' << month << '-' << day;
        EXPECT_TRUE(date.Year() == 0 && date.Month() == 0 && date.Day() == 0 && date.DayOfWeek() == 0);
    }
}

TEST(DateTest, MonthsCountOnIntoOtherYears) {
    for (const auto& [month, wantedYear, wantedMonth] : {std::tuple{13, 2016, 1},
                                                         {24, 2016, 12},
                                                         {25, 2017, 1},
                                                         {0, 2014, 12},
                                                         {-11, 2014, 1},
                                                         {-12, 2013, 12}}) {
        const clsDate date(2015, month, 1);
        EXPECT_TRUE(date.Year() == wantedYear && date.Month() == wantedMonth) << month;
    }
    for (const auto& [year, month, last] :
         {std::tuple{2015, 2, 28}, {2016, 2, 29}, {1900, 2, 28}, {2015, 12, 31}, {1500, 2, 29}})
        EXPECT_EQ(clsDate::LastOfMonth(year, month).Day(), last) << year << '-' << month;
}

TEST(TimeStampTest, NamesTheDayIfItIsKnown) {
    SYSTEMTIME time = {.wYear = 2026,
                       .wMonth = 11,
                       .wDayOfWeek = kNoDayOfWeek,
                       .wDay = 13,
                       .wHour = 16,
                       .wMinute = 30,
                       .wSecond = 59,
                       .wMilliseconds = 7};
    EXPECT_STREQ(TimeStampText(time, true).Text(), L"202611131630");
    const String plain = TimeStampText(time);
    EXPECT_EQ(Find(plain.Text(), L"59"), -1) << "no seconds";
    EXPECT_GE(Find(plain.Text(), L"30"), 0);
    time.wDayOfWeek = 0;
    const String sunday = String::FromLocaleInfo(LOCALE_SDAYNAME7);
    EXPECT_STREQ(TimeStampText(time).Text(), (plain + L" (" + sunday + L")").Text());
    time.wHour = 25;
    const String invalid = TimeStampText(time);
    EXPECT_STREQ(invalid.Left(30).Text(), L"[time 25:30:59.007 is invalid:");
    EXPECT_STREQ(invalid.Right(2).Text(), L"]\n");
}

} // namespace
} // namespace vxut
