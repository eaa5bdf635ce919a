#include "tests/support/child_process.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace vxut {
namespace {

// Runs the task of a child in a zone and a locale.
std::string ChildIn(const wchar_t* zone, const wchar_t* locale, const wchar_t* task) {
    SetEnvironmentVariableW(L"TZ", zone);
    SetEnvironmentVariableW(L"LC_ALL", locale);
    const std::string output = test::RunChild(task).output;
    SetEnvironmentVariableW(L"TZ", nullptr);
    SetEnvironmentVariableW(L"LC_ALL", nullptr);
    return output;
}

// The child prints the begin and the end of daylight saving time in 2026 and 2027, noon of 1 January and 1
// July 2026 in local time as UTC and back.
TEST(TimeZoneTest, DaylightSavingFollowsTheRulesOfTheZone) {
    const std::tuple<const wchar_t*, const char*> kRows[] = {
        {L"Europe/Berlin",
         "20260329010000 20261025010000 20270328010000 20271031010000 "
         "20260101110000 20260701100000 20260701120000"},
        {L"America/New_York",
         "20260308070000 20261101060000 20270314070000 20271107060000 "
         "20260101170000 20260701160000 20260701120000"},
        {L"Australia/Sydney",
         "20261003160000 20260404160000 20271002160000 20270403160000 "
         "20260101010000 20260701020000 20260701120000"},
        {L"Asia/Tokyo", "0 0 0 0 20260101030000 20260701030000 20260701120000"},
        {L"UTC", "0 0 0 0 20260101120000 20260701120000 20260701120000"},
    };
    for (const auto& [zone, wanted] : kRows) EXPECT_EQ(ChildIn(zone, nullptr, L"zone"), wanted) << zone;
}

// The child writes a date of the user's locale, reads one that is ambiguous, and prints both.
TEST(UserLocaleTest, DatesAreInTheFormOfTheUser) {
    EXPECT_EQ(ChildIn(nullptr, L"de_DE.UTF-8", L"user-date"), "13.11.2026 16:30:00 20260403000000");
    EXPECT_EQ(ChildIn(nullptr, L"en_US.UTF-8", L"user-date"), "11/13/2026 4:30:00 PM 20260304000000");
    EXPECT_EQ(ChildIn(nullptr, L"sv_SE.UTF-8", L"user-date"), "2026-11-13 16:30:00 failed");
}

} // namespace
} // namespace vxut
