#include "locale/date_forms.h"

#include "locale/compact_date.h"
#include "locale/system_time.h"
#include "locale/time_zone.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace vxut {
namespace {

// "YYYYMMDDhhmmss", or "none" for the empty time.
std::wstring Digits(const SYSTEMTIME& time) {
    const bool isEmpty = time.wYear == 0 && time.wMonth == 0 && time.wDayOfWeek == kNoDayOfWeek;
    return isEmpty ? L"none" : CompactDate(time).Text();
}

std::wstring UtcOf(const wchar_t* localDigits) {
    return Digits(UtcOfLocalTime(ParseCompactDate(localDigits)));
}

TEST(InternetDateTest, NumericZonesMakeItUtc) {
    const std::pair<const wchar_t*, const wchar_t*> kRows[] = {
        {L"Fri, 13 Nov 2026 16:30:00 +0100", L"20261113153000"},
        {L"Fri,  13  NOV  2026 16:30:00 -0530", L"20261113220000"},
        {L"1 Jan 2026 00:10:05 +0030", L"20251231234005"},
        {L"13 Nov 2026 16:30:00", L"20261113163000"},
        {L"13 Nov 2026 16:30:00 GMT", L"20261113163000"},
        {L"13 Nov 2026 16:30:00 EST", L"20261113163000"}, // named zones change nothing
        {L"received 3 feb 2001 4:5:6 (UT) later", L"20010203040506"},
        {L"13 Foo 2026 16:30:00", L"20260013163000"},
        {L"99 Nov 2026 16:30:00 +0100", L"none"},
        {L"13 Nov 26 16:30:00", L"none"},
        {L"13 Nov 2026 16:30", L"none"},
        {L"", L"none"},
    };
    for (const auto& [text, wanted] : kRows) {
        SYSTEMTIME time = EmptyTime();
        EXPECT_TRUE(ParseInternetDate(time, text));
        EXPECT_EQ(Digits(time), wanted) << text;
    }
}

TEST(Iso8601DateTest, OffsetsMakeItUtcAndOthersAreLocal) {
    const std::pair<const wchar_t*, std::wstring> kRows[] = {
        {L"2026-11-13T16:30:00+01:00", L"20261113153000"},
        {L"2026-11-13T16:30:00.123+0100", L"20261113153000"},
        {L"2026-11-13T16:30-01", L"20261113173000"},
        {L"2026-11-13T16\x2212"
         L"02:30",
         L"20261113183000"},
        {L"2026\x2010"
         L"11-13T00:10:05,5+00:30",
         L"none"}, // no separator of dates
        {L"2026-11-13T24:00:00+00:00", L"20261114000000"},
        {L"2026-11-13T16:30:00Z", UtcOf(L"20261113163000")},
        {L"2026-11-13T16:30:00", UtcOf(L"20261113163000")},
        {L"2026-11-13", UtcOf(L"20261113000000")},
        {L"2026x11\\13 at noon", UtcOf(L"20261113000000")},
        {L"202601122", UtcOf(L"20260112000000").empty() ? L"" : UtcOf(L"20260122000000")},
        {L"2026-13-13T16:30:00", L"none"},
    };
    for (const auto& [text, wanted] : kRows) {
        SYSTEMTIME time = EmptyTime();
        const bool isRead = ParseIso8601Date(time, text);
        if (isRead) EXPECT_EQ(Digits(time), wanted) << text;
    }
}

TEST(Iso8601DateTest, APartThatIsCutShortFailsAndLeavesWhatWasRead) {
    const std::pair<const wchar_t*, const wchar_t*> kRows[] = {
        {L"", L"none"},
        {L"202", L"none"},
        {L"2026", L"20260000000000"},
        {L"2026-11", L"20261100000000"},
        {L"2026-11-", L"20261100000000"},
        {L"2026-11-13T", L"20261113000000"},
        {L"2026-11-13T1:00", L"20261113000000"},
        {L"2026-11-13T16:30:00+1", L"20261113163000"},
        {L"2026-11-13T16:30:00+01:", L"20261113163000"},
        {L"20261113", L"20261100000000"}, // "1" is a separator, then "11" the month
    };
    for (const auto& [text, wanted] : kRows) {
        SYSTEMTIME time = EmptyTime();
        EXPECT_FALSE(ParseIso8601Date(time, text)) << text;
        EXPECT_EQ(Digits(time), wanted) << text;
    }
}

TEST(AnyDateTest, TheFirstReaderThatUnderstandsTheTextDecides) {
    const std::pair<const wchar_t*, std::wstring> kRows[] = {
        {L" 20261113163005 ", L"20261113163005"},
        {L"20261113", L"20261113000000"},
        {L"202611", L"20261100000000"},
        {L"99999999999999", L"99999999999999"}, // nothing is checked
        {L"Fri, 13 Nov 2026 16:30:00 +0100", L"20261113153000"},
        {L"2026-11-13T16:30:00+01:00", L"20261113153000"},
        {L"99 Nov 2026 16:30:00", L"none"},
        {L"nonsense", L"none"},
        {L"0", L"00000000000000"},
    };
    for (const auto& [text, wanted] : kRows) {
        const SYSTEMTIME time = ParseAnyDate(text);
        EXPECT_TRUE(Digits(time) == wanted || CompactDate(time) == wanted.c_str()) << text << Digits(time);
    }
    SYSTEMTIME now;
    GetLocalTime(&now);
    EXPECT_NEAR(ParseAnyDate(L"  ").wYear, now.wYear, 1);
}

TEST(VariantDateTest, DateZeroAndOtherTextsAreRefused) {
    SYSTEMTIME time = EmptyTime();
    for (const wchar_t* text : {L"", L"30.12.1899 x", L"0", L"1899-12-30"}) {
        EXPECT_FALSE(ParseVariantDate(time, text)) << text;
        EXPECT_EQ(Digits(time), L"none");
    }
    EXPECT_TRUE(ParseVariantDate(time, L"2026-11-13 16:30:05"));
    EXPECT_EQ(Digits(time), L"20261113163005");
}

TEST(AddMillisecondsTest, MovesBothWaysAndEmptiesWhatCannotBeConverted) {
    SYSTEMTIME time = ParseCompactDate(L"20260301000000");
    AddMilliseconds(time, -1);
    EXPECT_TRUE(Digits(time) == L"20260228235959" && time.wMilliseconds == 999);
    SYSTEMTIME early = ParseCompactDate(L"16010101000000");
    AddMilliseconds(early, -1);
    EXPECT_EQ(Digits(early), L"none");
    SYSTEMTIME invalid = ParseCompactDate(L"20260230000000");
    AddMilliseconds(invalid, 0);
    EXPECT_EQ(Digits(invalid), L"none");
}

} // namespace
} // namespace vxut
