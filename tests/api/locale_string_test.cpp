#include "util/locale_string.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace {

using Comparison = int (*)(const wchar_t*, const wchar_t*);
using BoundedComparison = int (*)(const wchar_t*, const wchar_t*, uint32_t);

TEST(LocaleStringTest, ComparisonsFollowTheLocaleAndNotTheCodeUnits) {
    const std::tuple<Comparison, const wchar_t*, const wchar_t*, int> kRows[] = {
        {UtilLocaleStrcmp, L"a", L"B", -1},     {UtilLocaleStrcmp, L"B", L"a", 1},
        {UtilLocaleStrcmp, L"abc", L"abc", 0},  {UtilLocaleStrcmp, L"\xE4", L"z", -1},
        {UtilLocaleStricmp, L"ABC", L"abc", 0}, {UtilLocaleStricmp, L"\xC4", L"\xE4", 0},
        {UtilLocaleStrcmp, L"", L"", 0},        {UtilLocaleStrcmp, nullptr, L"", -2},
        {UtilLocaleStricmp, L"", nullptr, -2},
    };
    for (const auto& [compare, first, second, expected] : kRows)
        EXPECT_EQ(compare(first, second), expected) << (first ? first : L"null") << (second ? second : L"");
    EXPECT_NE(UtilLocaleStrcmp(L"ABC", L"abc"), 0);
}

TEST(LocaleStringTest, BoundedComparisonsCutBothTextsToTheCount) {
    const std::tuple<const wchar_t*, const wchar_t*, uint32_t, int, int> kRows[] = {
        {L"ab", L"abc", 3, -1, -1},
        {L"abc", L"ab", 3, 1, 1},
        {L"ab", L"abc", 2, 0, 0},
        {L"x", L"a", 0, 0, 0},
        {L"", L"", 5, 0, 0},
        {L"", L"a", 5, -1, -1},
        {L"abX", L"abx", 2, 0, 0},
        {L"abZ", L"aby", 3, 1, 1},
        {L"AB", L"ab", UINT32_MAX, 1, 0},
        {L"a", L"b", 1, -1, -1},
        {nullptr, L"a", 1, 0, 0},
        {L"a", nullptr, 1, 0, 0},
        {L"b", L"abc", 9, 1, 1},
        {L"ab", L"ab", 0xFFFFFFFF, 0, 0},
    };
    for (const auto& [first, second, count, expected, expectedIgnoringCase] : kRows) {
        EXPECT_EQ(UtilLocaleStrncmp(first, second, count), expected) << first << second << count;
        EXPECT_EQ(UtilLocaleStrnicmp(first, second, count), expectedIgnoringCase) << first << second << count;
    }
}

TEST(LocaleStringTest, CaseIsMappedInPlace) {
    wchar_t text[] = L"\xC4pfel \x3B1";
    EXPECT_EQ(UtilLocaleStrupr(text), text);
    EXPECT_STREQ(text, L"\xC4PFEL \x391");
    EXPECT_EQ(UtilLocaleStrlwr(text), text);
    EXPECT_STREQ(text, L"\xE4pfel \x3B1");
    EXPECT_EQ(UtilLocaleStrupr(nullptr), nullptr);
    EXPECT_EQ(UtilLocaleStrlwr(nullptr), nullptr);
}

} // namespace
