#include "diagnostics/line_clock.h"

#include "frame/settings.h"
#include "tests/support/registry_scope.h"

#include <gtest/gtest.h>

#include <cwchar>

namespace vxut {
namespace {

using Form = clsLineClock::Form;

unsigned OfDay(unsigned h, unsigned m, unsigned s, unsigned ms) {
    return ((h * 60 + m) * 60 + s) * 1000 + ms;
}

TEST(LineClockTest, CountsFromItsStart) {
    const clsLineClock clock(Form::kPerformanceCounter);
    const ULONGLONG start = GetTickCount64();
    Sleep(60);
    clsLineBuffer line;
    clock.AppendTime(line);
    const ULONGLONG elapsed = GetTickCount64() - start;
    unsigned m = 99, s = 99, ms = 0;
    ASSERT_EQ(std::wcslen(line.Text()), 9u);
    ASSERT_EQ(swscanf(line.Text(), L"%2u:%2u.%3u", &m, &s, &ms), 3);
    EXPECT_GE(OfDay(0, m, s, ms), 45u);
    EXPECT_LE(OfDay(0, m, s, ms), elapsed + 30);
}

TEST(LineClockTest, TellsTheLocalTime) {
    const clsLineClock clock(Form::kLocalTime);
    SYSTEMTIME before, behind;
    clsLineBuffer line;
    GetLocalTime(&before);
    clock.AppendTime(line);
    GetLocalTime(&behind);
    unsigned h = 99, m = 99, s = 99, ms = 0;
    ASSERT_EQ(std::wcslen(line.Text()), 12u);
    ASSERT_EQ(swscanf(line.Text(), L"%2u:%2u:%2u.%3u", &h, &m, &s, &ms), 4);
    EXPECT_GE(OfDay(h, m, s, ms), OfDay(before.wHour, before.wMinute, before.wSecond, before.wMilliseconds));
    EXPECT_LE(OfDay(h, m, s, ms), OfDay(behind.wHour, behind.wMinute, behind.wSecond, behind.wMilliseconds));
}

TEST(LineClockTest, TakesTheFormOfTheSetting) {
    test::RegistryScope value(kSettingForceUsePerfCounters);
    EXPECT_EQ(clsLineClock::ConfiguredForm(), Form::kLocalTime);
    const std::pair<const wchar_t*, bool> cases[] = {{L"F", false}, {L"0", false}, {L"False", false},
                                                     {L"T", true},  {L"f", true},  {L"", true}};
    for (const auto& [text, isCounter] : cases) {
        value.SetText(text);
        EXPECT_EQ(clsLineClock::ConfiguredForm() == Form::kPerformanceCounter, isCounter)
            << testing::PrintToString(text);
    }
    value.SetNumber(1); // not a text
    EXPECT_EQ(clsLineClock::ConfiguredForm(), Form::kLocalTime);
}

} // namespace
} // namespace vxut
