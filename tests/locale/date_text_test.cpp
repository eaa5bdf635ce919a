#include "locale/date_text.h"

#include "base/spare.h"
#include "locale/compact_date.h"
#include "tests/support/import_table.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace vxut {
namespace {

constexpr uint32_t kGerman = 0x407, kAmerican = 0x409, kSwedish = 0x41D;

// Today's fields are read before and after, in case that the day ends between.
std::wstring WithToday(std::wstring pattern) {
    SYSTEMTIME today;
    GetLocalTime(&today);
    const std::wstring digits = CompactDate(today).Text();
    if (pattern[0] == L'Y') pattern.replace(0, 4, digits, 0, 4);
    if (pattern[4] == L'M') pattern.replace(4, 2, digits, 4, 2);
    if (pattern[6] == L'D') pattern.replace(6, 2, digits, 6, 2);
    return pattern;
}

TEST(ParseDateTextTest, ReadsTheFormsOfALocaleAndIso) {
    constexpr uint32_t kExpand = kDateExpandYear, kAll = kDateNeedsAllFields;
    const std::tuple<uint32_t, const wchar_t*, uint32_t, int, const wchar_t*> kRows[] = {
        {kGerman, L" 13.11.2026 ", 0, 0, L"20261113000000"},
        {kGerman, L"13 . 11 . 2026, 16:30", kAll, 0, L"20261113163000"},
        {kGerman, L"13.11.2026 16:30:05", 0, 0, L"20261113163005"},
        {kGerman, L"13.11.2026 4:30 pm", 0, 0, L"20261113163000"},
        {kGerman, L"31.02.2015", 0, -52, L"20150231000000"},
        {kGerman, L"2015-03-04 10:20", 0, 0, L"20150304102000"},
        {kGerman, L"12", 0, 0, L"0012MMDD000000"},
        {kGerman, L"3.5", 0, 0, L"0005MM03000000"},
        {kGerman, L"3.5.", 0, 0, L"YYYY0503000000"},
        {kGerman, L"3.5.", kAll, -52, L"YYYY0503000000"},
        {kGerman, L"3.5.29", kExpand, 0, L"20290503000000"},
        {kGerman, L"3.5.30", kExpand, 0, L"19300503000000"},
        {kGerman, L"3.5.99", 0, 0, L"00990503000000"},
        {kGerman, L"3x5", 0, -52, L"00000000000000"},
        {kGerman, L"3.5.2026 25:00", 0, -52, L"00000000000000"},
        {kGerman, L"1.1.99999", 0, -52, nullptr},
        {kGerman, L"65537.1.2026", 0, -52, nullptr},
        {kGerman, L"1.1.99999999999999999999", 0, -52, nullptr},
        {kAmerican, L"11/13/2026 4:30 PM", 0, 0, L"20261113163000"},
        {kAmerican, L"11/13/2026 12:15 am", 0, 0, L"20261113121500"},
        {kAmerican, L"11/13/2026 12:15 PM", 0, 0, L"20261113121500"},
        {kAmerican, L"1:30 PM", kAll, -52, L"YYYYMMDD133000"},
        {kAmerican, L"16:30 PM", 0, 0, L"0001MMDD183000"}, // the year 1, 6:30 PM
        {kSwedish, L"2026-11-13", 0, 0, L"20261113000000"},
        {0xFFFF, L"13.11.2026 16:30", 0, 0, L"20261113163000"}, // an unknown locale has the defaults
    };
    for (const auto& [lcid, text, flags, status, wanted] : kRows) {
        SYSTEMTIME time = {1, 1, 1, 1, 1, 1, 1, 1};
        EXPECT_EQ(ParseDateText(lcid, text, time, flags), status) << text;
        if (wanted) EXPECT_EQ(CompactDate(time).Text(), WithToday(wanted)) << text;
        EXPECT_TRUE(time.wDayOfWeek == 0 && time.wMilliseconds == 0);
    }
    SYSTEMTIME now, time;
    GetLocalTime(&now);
    EXPECT_EQ(ParseDateText(kGerman, L"  ", time, kAll), kDateOk);
    EXPECT_NEAR(time.wYear, now.wYear, 1);
}

TEST(DateTextTest, WritesWhatTheLocaleWrites) {
    const std::tuple<uint32_t, const wchar_t*, const wchar_t*> kRows[] = {
        {kGerman, L"20261113163005", L"13.11.2026 16:30:05"},     {kGerman, L"20261113", L"13.11.2026"},
        {kAmerican, L"20261113163005", L"11/13/2026 4:30:05 PM"}, {kGerman, L"15000203", L"3.2.1500"},
        {kAmerican, L"15000203000001", L"2/3/1500 12:00:01 AM"},  {kSwedish, L"00070203", L"0007-02-03"},
    };
    for (const auto& [lcid, digits, wanted] : kRows) {
        const SYSTEMTIME time = ParseCompactDate(digits);
        EXPECT_STREQ(DateText(lcid, &time).Text(), wanted) << digits;
    }
    const SYSTEMTIME impossible = ParseCompactDate(L"20260230");
    const String today = DateText(kGerman, nullptr);
    const String replaced = DateText(kGerman, &impossible);
    EXPECT_EQ(Find(today.Text(), replaced.Text()), 0) << "today takes its place";
    EXPECT_LT(replaced.Length(), today.Length()) << "without a time";
}

int WINAPI QuotedPicture(LCID, LCTYPE, LPWSTR text, int capacity) {
    std::wcsncpy(text, LR"("den" d. "M"MM/y yy ddd")", static_cast<size_t>(capacity));
    return 1;
}

TEST(DateTextTest, QuotedTextOfAPictureIsCopiedAndTheRunBehindItIsNot) {
    test::ImportPatch patch(GetModuleHandleW(nullptr));
    ASSERT_NE(patch.Replace("GetLocaleInfoW", QuotedPicture), nullptr);
    const SYSTEMTIME time = ParseCompactDate(L"15000203");
    EXPECT_STREQ(DateText(kGerman, &time).Text(), L"den3. M02/1500 00 ");
}

TEST(DateTextTest, WhatIsWrittenIsReadAgainInEveryLocaleOfTheSystem) {
    static int locales = 0;
    EnumSystemLocalesW(
        [](wchar_t* number) -> BOOL {
            const auto lcid = static_cast<uint32_t>(std::wcstoul(number, nullptr, 16));
            wchar_t calendar[10] = L"";
            GetLocaleInfoW(lcid, LOCALE_ICALENDARTYPE, calendar, 10);
            wchar_t picture[80] = L"";
            GetLocaleInfoW(lcid, LOCALE_SSHORTDATE, picture, 80);
            // Other calendars, names of months and quoted texts are not read.
            if (std::wstring(calendar) != L"1" || std::wcspbrk(picture, L"'") || std::wcsstr(picture, L"MMM"))
                return TRUE;
            const SYSTEMTIME time = ParseCompactDate(L"20261113");
            const String text = DateText(lcid, &time);
            SYSTEMTIME read;
            if (ParseDateText(lcid, text, read, kDateExpandYear | kDateNeedsAllFields) == kDateOk) {
                EXPECT_STREQ(CompactDate(read).Text(), L"20261113000000") << lcid << text.Text();
                ++locales;
            }
            return TRUE;
        },
        LCID_INSTALLED);
    EXPECT_GT(locales, 50);
}

TEST(DateTextTest, ThreadsWithDifferentLocalesDoNotMixTheirPatterns) {
    std::vector<std::thread> threads;
    for (const uint32_t lcid : {kGerman, kAmerican, kSwedish, kGerman, kAmerican}) {
        threads.emplace_back([lcid] {
            const SYSTEMTIME time = ParseCompactDate(L"20261213163000");
            const String text = DateText(lcid, &time);
            for (int i = 0; i < 300; ++i) {
                SYSTEMTIME read;
                ASSERT_EQ(ParseDateText(lcid, text, read, 0), kDateOk);
                ASSERT_STREQ(CompactDate(read).Text(), L"20261213163000");
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

TEST(SpareTest, AnObjectIsKeptForTheNextUserAndOwnedOnce) {
    static int alive = 0;
    struct Counted {
        Counted() { ++alive; }
        ~Counted() { --alive; }
    };
    {
        clsSpare<Counted> spare;
        EXPECT_EQ(spare.Take(), nullptr);
        auto first = std::make_unique<Counted>();
        const Counted* const kept = first.get();
        spare.Keep(std::move(first));
        auto taken = spare.Take();
        EXPECT_TRUE(taken.get() == kept && spare.Take() == nullptr);
        spare.Keep(std::make_unique<Counted>());
        spare.Keep(std::move(taken));
        EXPECT_EQ(alive, 1) << "the one that was kept before is destroyed";
    }
    EXPECT_EQ(alive, 0);
}

} // namespace
} // namespace vxut
