#include "diagnostics/line_clock.h"

#include "frame/settings.h"
#include "tests/support/registry_scope.h"

#include <gtest/gtest.h>

#include <cwchar>

namespace vxut {
namespace {

using Form = clsLineClock::Form;

TEST(LineClockTest, CountsFromItsStart) {
    const clsLineClock clock(Form::kPerformanceCounter);
    const ULONGLONG start = GetTickCount64();
    Sleep(60);
    clsLineBuffer line;
    clock.AppendTime(line);
    const ULONGLONG elapsed = GetTickCount64() - start;
    unsigned minutes = 99, seconds = 99, milliseconds = 0;
    ASSERT_EQ(std::wcslen(line.Text()), 9u);
    ASSERT_EQ(swscanf(line.Text(), L"%2u:%2u.%3u", &minutes, &seconds, &milliseconds), 3);
    const unsigned total = (minutes * 60 + seconds) * 1000 + milliseconds;
    EXPECT_GE(total, 45u);
    EXPECT_LE(total, elapsed + 30);
}

TEST(LineClockTest, TellsTheLocalTime) {
    const clsLineClock clock(Form::kLocalTime);
    SYSTEMTIME before, behind;
    clsLineBuffer line;
    GetLocalTime(&before);
    clock.AppendTime(line);
    GetLocalTime(&behind);
    const auto ofDay = [](unsigned h, unsigned m, unsigned s, unsigned ms) {
        return ((h * 60 + m) * 60 + s) * 1000 + ms;
    };
    unsigned h = 99, m = 99, s = 99, ms = 0;
    ASSERT_EQ(std::wcslen(line.Text()), 12u);
    ASSERT_EQ(swscanf(line.Text(), L"%2u:%2u:%2u.%3u", &h, &m, &s, &ms), 4);
    EXPECT_GE(ofDay(h, m, s, ms), ofDay(before.wHour, before.wMinute, before.wSecond, before.wMilliseconds));
    EXPECT_LE(ofDay(h, m, s, ms), ofDay(behind.wHour, behind.wMinute, behind.wSecond, behind.wMilliseconds));
}

TEST(LineClockTest, TakesTheFormOfTheSetting) {
    test::RegistryScope value(kSettingForceUsePerfCounters);
    EXPECT_EQ(clsLineClock::ConfiguredForm(), Form::kLocalTime);
    const std::pair<const wchar_t*, Form> cases[] = {
        {L"F", Form::kLocalTime},          {L"0", Form::kLocalTime},
        {L"False", Form::kLocalTime},      {L"T", Form::kPerformanceCounter},
        {L"f", Form::kPerformanceCounter}, {L"", Form::kPerformanceCounter},
    };
    for (const auto& [text, form] : cases) {
        value.SetText(text);
        EXPECT_EQ(clsLineClock::ConfiguredForm(), form) << testing::PrintToString(text);
    }
    value.SetNumber(1); // not a text
    EXPECT_EQ(clsLineClock::ConfiguredForm(), Form::kLocalTime);
}

} // namespace
} // namespace vxut
