// Dates as a host sees them.
#include "util/dates.h"

#include <gtest/gtest.h>
// After windows.h, which it needs:
#include <oleauto.h>

#include <string>
#include <tuple>

namespace {

constexpr uint32_t kGerman = 1031;

TEST(DateExports, LocaleTextsAreReadAndWritten) {
    SYSTEMTIME time = {};
    EXPECT_EQ(UtilLocSystemTimeFromLocaleString(kGerman, L"31.12.99 18:30", &time, UTIL_DATE_EXPAND_YEAR), 0);
    EXPECT_TRUE(time.wYear == 1999 && time.wMonth == 12 && time.wDay == 31 && time.wHour == 18);
    VARIANT text;
    VariantInit(&text);
    for (int round = 0; round < 2; ++round) // the second call releases the text of the first
        EXPECT_EQ(UtilLocLocaleStringFromSystemTime(kGerman, &time, &text), 0);
    ASSERT_EQ(V_VT(&text), VT_BSTR);
    EXPECT_STREQ(V_BSTR(&text), L"31.12.1999 18:30:00");
    VariantClear(&text);

    EXPECT_EQ(UtilLocSystemTimeFromLocaleString(kGerman, nullptr, &time, 0), 0) << "null is now";
    EXPECT_EQ(UtilLocSystemTimeFromLocaleString(kGerman, L"31.2.2015", &time, 0), UTIL_DATE_ERR_FORMAT);
    EXPECT_EQ(UtilLocSystemTimeFromLocaleString(kGerman, L"1.2.2015", nullptr, 0), UTIL_DATE_ERR_FORMAT);
    EXPECT_EQ(UtilLocLocaleStringFromSystemTime(kGerman, nullptr, nullptr), 0);
}

TEST(DateExports, CompactDatesAreFilledUpAndCut) {
    const std::tuple<const wchar_t*, uint32_t, int, const wchar_t*> kRows[] = {
        {L"20261113", 15, 1, L"20261113000000"},
        {L"20261113163005", 15, 1, L"20261113163005"},
        {L"20261113163005", 9, 1, L"20261113"},
        {L"123456789", 15, 0, L""},
        {L"nonsense", 15, 0, L""},
        {nullptr, 15, 0, L""},
        {L"2026111\x0663", 15, 0, L""},
    };
    for (const auto& [text, capacity, wanted, digits] : kRows) {
        wchar_t buffer[16] = L"###############";
        EXPECT_EQ(UtilDateTimeFromLocaleString(text, buffer, capacity, 0), wanted);
        EXPECT_STREQ(buffer, digits);
        EXPECT_EQ(buffer[15], 0);
    }
    EXPECT_EQ(UtilDateTimeFromLocaleString(L"20261113", nullptr, 0, 0), 1);
}

TEST(DateExports, ATextAsLongAsTheBufferLosesItsLastUnit) {
    wchar_t whole[40];
    ASSERT_EQ(UtilDateTimeToLocaleString(L" 20261113163005 ", whole, 40), 1);
    const std::wstring text = whole;
    const auto length = static_cast<uint32_t>(text.size());
    for (const uint32_t capacity : {length + 1, length, length - 1, 0u}) {
        wchar_t buffer[40] = L"#";
        EXPECT_EQ(UtilDateTimeToLocaleString(L"20261113163005", buffer, capacity), capacity >= length);
        if (capacity >= length) EXPECT_EQ(buffer, text.substr(0, capacity - 1));
        if (capacity == length - 1) EXPECT_STREQ(buffer, L"") << "empty after a failure";
        if (capacity == 0) EXPECT_STREQ(buffer, L"#") << "nothing is written";
    }
    for (const wchar_t* blank : {L"  ", static_cast<const wchar_t*>(nullptr)}) {
        EXPECT_EQ(UtilDateTimeToLocaleString(blank, whole, 40), 1);
        EXPECT_STREQ(whole, L"");
    }
}

TEST(DateExports, TimesOfProgramsAndZones) {
    SYSTEMTIME time;
    EXPECT_EQ(UtilLocDateTimeToSYSTEMTIME(L"Fri, 13 Nov 2026 16:30:00 +0100", &time), 0);
    EXPECT_TRUE(time.wHour == 15 && time.wDay == 13);
    EXPECT_EQ(UtilLocDateTimeToSYSTEMTIME(L"nonsense", &time), 0);
    EXPECT_TRUE(time.wYear == 0 && time.wDayOfWeek == 65535);
    EXPECT_EQ(UtilLocDateTimeToSYSTEMTIME(L"x", nullptr), 0);

    EXPECT_EQ(UtilLocConvertLocalTimeToUTCTime(nullptr), static_cast<int32_t>(0x80070057));
    EXPECT_EQ(UtilLocConvertUTCTimeToLocalTime(&time), static_cast<int32_t>(0x80070057)) << "no year";
    time = {2026, 2, 0, 30, 1, 0, 0, 0};
    EXPECT_EQ(UtilLocConvertLocalTimeToUTCTime(&time), 0);
    EXPECT_TRUE(time.wYear == 0 && time.wDayOfWeek == 65535) << "no such day";
    EXPECT_EQ(UtilLocGetDSTStartAndEndInUTC(2026, nullptr, nullptr), 0);
}

} // namespace
