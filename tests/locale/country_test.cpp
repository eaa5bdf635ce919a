#include "locale/country_car_table.h"
#include "locale/country_lookup.h"
#include "locale/country_resource.h"
#include "locale/country_system.h"
#include "tests/support/failing_allocations.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <set>
#include <string>

namespace vxut {
namespace {

TEST(CountryResourceTest, RowsHaveTwoOrThreeFields) {
    const scCountryRow andorra = ParseCountryRow(L"AD=Andorra=AND");
    EXPECT_TRUE(andorra.iso == L"ad" && andorra.englishName == L"Andorra" && andorra.car == L"AND");
    EXPECT_TRUE(ParseCountryRow(L"AM=Armenia=").car.IsEmpty());
    EXPECT_TRUE(ParseCountryRow(L"AS=Samoa Islands").car.IsEmpty());
    EXPECT_TRUE(ParseCountryRow(L"x").englishName.IsEmpty());
}

TEST(CountryResourceTest, TheTablesHaveTheirRowsAtTheirIds) {
    EXPECT_STREQ(CountryResource(100).Text(), L"= =");
    EXPECT_STREQ(CountryResource(101).Text(), L"AF=Afghanistan=AF");
    EXPECT_STREQ(CountryResource(104).Text(), L"AD=Andorra=AND");
    EXPECT_STREQ(CountryResource(108).Text(), L"AM=Armenia=");
    EXPECT_STREQ(CountryResource(309).Text(), L"AS=Samoa Islands");
    EXPECT_STREQ(CountryResource(359).Text(), L"-");
    EXPECT_STREQ(CountryResource(520).Text(), L"-");
    int rows = 0;
    ForEachCountryRow([&](const scCountryRow&) { return ++rows > 0; });
    EXPECT_EQ(rows, 258);
}

TEST(CountryResourceTest, DetailsOverrideAndQuestionMarksDoNot) {
    scCountryFacts facts;
    facts.countryToCurrency[L"Cyprus*1055"] = L"old";
    facts.countryToCallingCode[L"Cyprus*1055"] = 1;
    facts.aliasToCountry[L"1055"] = L"Turkey*1055";
    AddDetails(
        facts,
        L"Cyprus*1055:NativeName=K;CallingCode=357;ISO3166=CY/CYP;LanguageCode=tr-cy;Currency=?;Odd=1;;x");
    EXPECT_TRUE(*facts.countryToCurrency.find(L"Cyprus*1055") == L"old");
    EXPECT_EQ(*facts.countryToCallingCode.find(L"cyprus*1055"), 357u);
    EXPECT_EQ(*facts.countryToLcid.find(L"Cyprus*1055"), 1055u);
    EXPECT_TRUE(*facts.countryToIso.find(L"Cyprus*1055") == L"CY/CYP");
    for (const wchar_t* const alias : {L"1055", L"0x041f", L"Cyprus", L"Cyprus*1055", L"K", L"cy", L"CYP"})
        EXPECT_TRUE(facts.aliasToCountry.find(alias)) << alias;
    EXPECT_TRUE(*facts.aliasToCountry.find(L"1055") == L"Cyprus*1055");
    for (const wchar_t* const tag : {L"tr-cy", L"tr"}) EXPECT_TRUE(facts.languageToCountry.find(tag)) << tag;
    AddDetails(facts, L"Laos*????:CallingCode=856");
    EXPECT_TRUE(*facts.aliasToCountry.find(L"laos") == L"Laos");
    EXPECT_EQ(*facts.countryToCallingCode.find(L"Laos"), 856u);
    EXPECT_FALSE(facts.countryToLcid.contains(L"Laos"));
}

TEST(CountryResourceTest, CountryRowsFillGapsOnly) {
    scCountryFacts facts;
    for (const wchar_t* const key : {L"Switzerland*1047", L"Switzerland*2055"})
        facts.aliasToCountry[key] = key;
    facts.aliasToCountry[L"CH"] = L"Switzerland*2055";
    facts.aliasToCountry[L"Andorra*1027"] = L"Andorra*1027";
    AddCountryRows(facts);
    EXPECT_TRUE(*facts.aliasToCountry.find(L"CH") == L"Switzerland*2055");
    EXPECT_TRUE(*facts.carToCountry.find(L"CH") == L"Switzerland*1047");
    EXPECT_TRUE(*facts.aliasToCountry.find(L"AD") == L"Andorra*1027");
    EXPECT_TRUE(*facts.countryToEnglishName.find(L"France") == L"France");
}

// The code pages of the table have no published source.
TEST(CountryResourceTest, CodePagesAreThoseOfTheSystem) {
    int compared = 0;
    for (uint32_t id = 408; id < 520; ++id) {
        const std::wstring row = CountryResource(id).Text();
        const auto lcid = static_cast<LCID>(std::wcstoul(row.c_str() + row.find(L'*') + 1, nullptr, 10));
        const std::wstring codePage = row.substr(row.find(L"ANSICP=") + 7);
        wchar_t expected[8] = L"0";
        if (lcid == 0 || !GetLocaleInfoW(lcid, LOCALE_IDEFAULTANSICODEPAGE, expected, 8)) continue;
        EXPECT_EQ(codePage, std::wcscmp(expected, L"0") == 0 ? L"?" : expected) << row;
        ++compared;
    }
    EXPECT_GT(compared, 100);
}

TEST(CountrySystemTest, TheLocaleOfACountryIsPicked) {
    const auto setOf = [](std::initializer_list<LCID> numbers) {
        LocaleSet locales;
        for (const LCID number : numbers) locales.insert(number);
        return locales;
    };
    EXPECT_EQ(PickLocale(L"CH", setOf({4108})), 4108u) << "the only one";
    EXPECT_EQ(PickLocale(L"ch", setOf({4108, 2055})), 2055u) << "the preferred one";
    EXPECT_EQ(PickLocale(L"DE", setOf({7, 1031, 1070})), 1031u) << "the first primary sublanguage";
    EXPECT_EQ(PickLocale(L"XX", setOf({4108, 2060})), 2060u) << "the first one";
}

TEST(CountrySystemTest, BothWaysFindTheLocalesOfTheSystem) {
    const LocaleSet locales = SystemLocales();
    const LocaleSet byNumber = SystemLocalesByNumber();
    EXPECT_GT(locales.entries(), 100);
    EXPECT_GT(byNumber.entries(), 100);
    for (const LCID lcid : {0u, 127u, 4096u}) EXPECT_FALSE(locales.contains(lcid)) << lcid;
    for (const LCID lcid : {1031u, 1033u, 4108u}) {
        EXPECT_TRUE(locales.contains(lcid)) << lcid;
        EXPECT_TRUE(byNumber.contains(lcid)) << lcid;
    }
}

TEST(CountryCarTableTest, IsSortedAndHasNoCodeTwice) {
    EXPECT_EQ(CarCodeTable().size(), size_t{227});
    IString previous;
    for (const scCarCode& row : CarCodeTable()) {
        EXPECT_LT(previous.CompareTo(Latin(row.code)), 0) << row.code;
        EXPECT_GT(Latin(row.name).Length(), 3) << row.code;
        previous = Latin(row.code);
    }
}

// Memory ends at some point of the first query. What was collected until then is used.
TEST(CountryLookupTest, AFirstQueryWithoutMemoryIsNotTriedAgain) {
    for (const unsigned successes : {0u, 10u, 1000u, 5000u, 20000u}) {
        clsCountryLookup lookup(HostKind::kOther);
        const IString key(L"Guadeloupe");
        bool hasThrown = false;
        {
            const test::FailingAllocations failing(successes);
            try {
                lookup.Locale(key);
            } catch (const std::bad_alloc&) {
                hasThrown = true;
            }
        }
        EXPECT_EQ(lookup.Locale(key), hasThrown ? 0u : 1036u) << successes;
    }
}

TEST(HostKindTest, TheKindOfTheHostDecidesAboutTagsAndCarCodes) {
    EXPECT_EQ(HostKindOf(L"vlmroute"), HostKind::kRoute);
    EXPECT_EQ(HostKindOf(L"VLMDESK"), HostKind::kDesk);
    EXPECT_EQ(HostKindOf(L""), HostKind::kOther);
    clsCountryLookup route(HostKind::kRoute);
    clsCountryLookup desk(HostKind::kDesk);
    EXPECT_EQ(route.Locale(L"de-CH"), 0u);
    EXPECT_EQ(desk.Locale(L"de-CH"), 2055u);
    EXPECT_STREQ(route.Name(L"smom").Text(), L"Sovereign Military Order of Malta");
    EXPECT_STREQ(route.Name(L"RGB").Text(), L"Guinea-Bissau");
    EXPECT_STREQ(route.Name(L"ax0").Text(), L"");
    EXPECT_STREQ(desk.Name(L"smom").Text(), L"");
}

} // namespace
} // namespace vxut
