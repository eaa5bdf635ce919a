// Countries and languages as a host sees them, on the locales of the running system.
#include "util/country.h"

#include <gtest/gtest.h>
#include <oleauto.h>

#include <atomic>
#include <cwchar>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace {

// A fact as text; the type of the variant has to be that of the fact.
std::wstring Fact(const wchar_t* key, uint32_t what) {
    VARIANT value;
    value.vt = VT_BSTR; // what a variant holds before is not looked at
    value.bstrVal = reinterpret_cast<BSTR>(8);
    if (UtilLocGetCountryInfo(key, what, &value) != 0) return L"(failed)";
    const bool isNumber =
        what == UTIL_COUNTRY_LOCALE || what == UTIL_COUNTRY_CALLING_CODE || what == UTIL_COUNTRY_CODE_PAGE;
    EXPECT_EQ(value.vt, isNumber ? VT_I4 : VT_BSTR);
    const std::wstring text =
        isNumber ? std::to_wstring(value.lVal) : std::wstring(value.bstrVal, SysStringLen(value.bstrVal));
    VariantClear(&value);
    return text;
}

LONG Language(const wchar_t* tag) {
    VARIANT value;
    EXPECT_EQ(UtilLocGetLanguageInfo(tag, UTIL_LANGUAGE_LOCALE, &value), 0);
    EXPECT_EQ(value.vt, VT_I4);
    return value.lVal;
}

TEST(CountryTest, ManyTextsNameOneCountry) {
    for (const wchar_t* const key : {L"DE", L"de", L"DEU", L"D", L"Germany", L"GERMANY", L"Deutschland",
                                     L"1031", L"0x0407", L"Germany*1031", L"de-DE"}) {
        EXPECT_EQ(Fact(key, UTIL_COUNTRY_LOCALE), L"1031") << key;
        EXPECT_EQ(Fact(key, UTIL_COUNTRY_CALLING_CODE), L"49") << key;
        EXPECT_EQ(Fact(key, UTIL_COUNTRY_ISO), L"DE") << key;
        EXPECT_EQ(Fact(key, UTIL_COUNTRY_CURRENCY), L"\x20AC") << key;
        EXPECT_EQ(Fact(key, UTIL_COUNTRY_CODE_PAGE), L"1252") << key;
        EXPECT_EQ(Fact(key, UTIL_COUNTRY_NAME), L"Germany") << key;
        EXPECT_EQ(Fact(key, UTIL_COUNTRY_NATIVE_NAME), L"Deutschland") << key;
    }
}

TEST(CountryTest, SourcesAreMergedInTheirOrder) {
    const std::tuple<const wchar_t*, uint32_t, const wchar_t*> kRows[] = {
        // Of several locales, the preferred one.
        {L"CH", UTIL_COUNTRY_LOCALE, L"2055"},
        {L"BE", UTIL_COUNTRY_LOCALE, L"2060"},
        // A locale that is not the one of its country.
        {L"fr-CH", UTIL_COUNTRY_LOCALE, L"4108"},
        {L"4108", UTIL_COUNTRY_LOCALE, L"4108"},
        {L"Switzerland*4108", UTIL_COUNTRY_ISO, L"CH"},
        {L"fr-CH", UTIL_COUNTRY_NAME, L"Switzerland"},
        {L"fr-CH", UTIL_COUNTRY_CALLING_CODE, L"41"},
        {L"fr-CH", UTIL_COUNTRY_CODE_PAGE, L"1252"},
        // An ISO code comes before the car code of another country.
        {L"ES", UTIL_COUNTRY_NAME, L"Spain"},
        {L"RU", UTIL_COUNTRY_NAME, L"Russia"},
        {L"ROU", UTIL_COUNTRY_NAME, L"Romania"},
        {L"A", UTIL_COUNTRY_NAME, L"Austria"},
        {L"AND", UTIL_COUNTRY_ISO, L"AD"},
        // The details of the library's table override the numbers of the system.
        {L"1036", UTIL_COUNTRY_NAME, L"Guadeloupe"},
        {L"MQ", UTIL_COUNTRY_CALLING_CODE, L"596"},
        {L"MQ", UTIL_COUNTRY_CURRENCY, L"\x20AC"},
        {L"Equatorial Guinea*1036", UTIL_COUNTRY_NATIVE_NAME,
         L"R\xE9publique de Guin\xE9\x65 \xE9quatoriale "},
        {L"Equatorial Guinea*1036", UTIL_COUNTRY_CURRENCY, L"XAF/GQE"},
        {L"gnq", UTIL_COUNTRY_ISO, L"GQ/GNQ"},
        {L"CYP", UTIL_COUNTRY_ISO, L"CY/CYP"},
        {L"Lao Peoples's Democratic Republic", UTIL_COUNTRY_CALLING_CODE, L"856"},
        // The rows of countries fill gaps.
        {L"AQ", UTIL_COUNTRY_NAME, L"Antarctica"},
        {L"Antarctica", UTIL_COUNTRY_NAME, L"Antarctica"},
        {L"AQ", UTIL_COUNTRY_LOCALE, L"0"},
        {L"YU", UTIL_COUNTRY_NAME, L"Yugoslavia"},
        {L"no such country", UTIL_COUNTRY_NAME, L""},
        {L"no such country", UTIL_COUNTRY_LOCALE, L"0"},
        {L"", UTIL_COUNTRY_ISO, L""},
        {nullptr, UTIL_COUNTRY_NAME, L""},
        {nullptr, UTIL_COUNTRY_CALLING_CODE, L"0"},
        {L"BDS", UTIL_COUNTRY_NAME, L"Barbados"},
        {L"SMOM", UTIL_COUNTRY_NAME, L""}, // in the table for one kind of hosts only
    };
    for (const auto& [key, what, expected] : kRows)
        EXPECT_EQ(Fact(key, what), expected) << (key ? key : L"null") << what;
}

TEST(CountryTest, UnknownSelectorsAndNullTargetsAreRefused) {
    for (const uint32_t what : {3u, 8u, 0xFFFFFFFFu}) {
        VARIANT value;
        value.vt = VT_I4;
        EXPECT_EQ(UtilLocGetCountryInfo(L"DE", what, &value), UTIL_COUNTRY_ERR_SELECTOR);
        EXPECT_EQ(value.vt, VT_EMPTY);
        value.vt = VT_I4;
        EXPECT_EQ(UtilLocGetLanguageInfo(L"de", what, &value), UTIL_COUNTRY_ERR_SELECTOR);
        EXPECT_EQ(value.vt, VT_EMPTY);
    }
    EXPECT_EQ(UtilLocGetCountryInfo(L"DE", 0, nullptr), UTIL_COUNTRY_ERR_SELECTOR);
    EXPECT_EQ(UtilLocGetLanguageInfo(L"de", 0, nullptr), UTIL_COUNTRY_ERR_SELECTOR);
    EXPECT_EQ(UtilLocGetCountryList(nullptr), UTIL_COUNTRY_ERR_SELECTOR);
}

TEST(CountryTest, LanguagesHaveANumberAndPrimaryOnesTheirOwn) {
    const std::tuple<const wchar_t*, LONG> kRows[] = {
        {L"de", 7},      {L"de-DE", 1031}, {L"DE-de", 1031}, {L"fr-CH", 4108},      {L"de-XX", 7},
        {L"xx", 0},      {L"xx-YY", 0},    {L"", 0},         {nullptr, 0},          {L"english", 0},
        {L"de-DE-x", 7}, {L"-", 0},        {L"pt-PT", 2070}, {L"sr-Latn-RS", 9242}, {L"sr-RS", 9242},
    };
    for (const auto& [tag, number] : kRows) EXPECT_EQ(Language(tag), number) << (tag ? tag : L"null");
}

TEST(CountryTest, TheListHasTheNamesOfAllKeys) {
    BSTR list = SysAllocString(L"old");
    ASSERT_EQ(UtilLocGetCountryList(&list), 0);
    const std::wstring names = L";" + std::wstring(list) + L";";
    SysFreeString(list);
    for (const wchar_t* const name :
         {L";Germany;", L";Martinique;", L";Equatorial Guinea;Equatorial Guinea;"})
        EXPECT_NE(names.find(name), names.npos) << name;
    EXPECT_LT(names.find(L";Austria;"), names.find(L";Germany;"));
    EXPECT_EQ(names.find(L'*'), names.npos);
    EXPECT_EQ(names.find(L";Antarctica;"), names.npos) << "it has no ISO entry";
}

TEST(CountryTest, EightThreadsMayAskFirst) {
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] { right += Fact(L"Germany", UTIL_COUNTRY_LOCALE) == L"1031"; });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(right, 8);
}

TEST(CountryTest, HugeKeysAreUnknown) {
    const std::wstring key(1000000, L'x');
    EXPECT_EQ(Fact(key.c_str(), UTIL_COUNTRY_NAME), L"");
    EXPECT_EQ(Language((L"de-" + key).c_str()), 7);
}

} // namespace
