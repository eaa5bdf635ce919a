#include "locale/country_resource.h"

#include "base/identity.h"
#include "containers/list.h"

#include <cwchar>

namespace vxut {
namespace {

constexpr LANGID kLanguage = MAKELANGID(LANG_ENGLISH, SUBLANG_NEUTRAL);

// The detail rows. Unused ids come before the first row and are empty.
constexpr uint32_t kFirstDetails = 400;
constexpr uint32_t kLastDetails = 520;
constexpr wchar_t kEndOfRows[] = L"-";

constexpr wchar_t kUnknown = L'?';

// The text behind the first occurrence of a unit; empty if there is none.
String PartBehind(const String& text, wchar_t unit) {
    const wchar_t* const found = std::wcschr(text.Text(), unit);
    return found ? text.Mid(found - text.Text() + 1) : String();
}

uint32_t Number(const String& digits) {
    return static_cast<uint32_t>(std::wcstoul(digits.Text(), nullptr, 10));
}

// What the pairs of a detail row add to the country.
void AddNativeName(scCountryFacts& facts, const String& country, const String& value) {
    facts.countryToNativeName[country] = value;
    facts.aliasToCountry[value] = country;
}

void AddIso(scCountryFacts& facts, const String& country, const String& value) {
    for (const String& code : value.Split(L'/')) facts.aliasToCountry[code] = country;
    facts.countryToIso[country] = value;
}

void AddLanguageCode(scCountryFacts& facts, const String& country, const String& value) {
    AddLanguage(facts, value, country, true);
}

void AddCallingCode(scCountryFacts& facts, const String& country, const String& value) {
    facts.countryToCallingCode[country] = Number(value);
}

void AddCurrency(scCountryFacts& facts, const String& country, const String& value) {
    facts.countryToCurrency[country] = value;
}

void AddCodePage(scCountryFacts& facts, const String& country, const String& value) {
    facts.countryToAnsiCodePage[country] = Number(value);
}

struct Detail {
    const wchar_t* key;
    void (*add)(scCountryFacts& facts, const String& country, const String& value);
};
constexpr Detail kDetails[] = {
    {L"NativeName", AddNativeName},     {L"CallingCode", AddCallingCode}, {L"ISO3166", AddIso},
    {L"LanguageCode", AddLanguageCode}, {L"Currency", AddCurrency},       {L"ANSICP", AddCodePage},
};

void AddPair(scCountryFacts& facts, const String& country, const String& pair) {
    const String key = PartBefore(pair, L'=');
    const String value = PartBehind(pair, L'=');
    if (value.IsEmpty() || value[0] == kUnknown) return;
    for (const Detail& detail : kDetails)
        if (key == detail.key) return detail.add(facts, country, value);
}

bool IsDigit(wchar_t unit) { return unit >= L'0' && unit <= L'9'; }

// The first country of each English name, by keys: that of "Germany*7" and "Germany*1031" is the one that
// sorts first.
WCTextDict<String> FirstCountries(const scCountryFacts& facts) {
    WCTextDict<String> first;
    for (const auto& entry : facts.aliasToCountry) {
        if (!std::wcschr(entry.key().Text(), L'*')) continue;
        AddMissing(first, PartBefore(entry.key(), L'*'), entry.value);
    }
    return first;
}

} // namespace

String CountryResource(uint32_t id) { return String::FromResource(Identity().library, id, kLanguage); }

scCountryRow ParseCountryRow(const String& row) {
    const String rest = PartBehind(row, L'=');
    return {PartBefore(row, L'='), PartBefore(rest, L'='), PartBehind(rest, L'=')};
}

WCTextDict<String> CarCodes() {
    WCTextDict<String> codes;
    ForEachCountryRow([&](const scCountryRow& row) {
        if (!row.car.IsEmpty()) codes[row.iso] = row.car;
        return true;
    });
    return codes;
}

void AddDetails(scCountryFacts& facts, const String& row) {
    String country = PartBefore(row, L':');
    const String name = PartBefore(country, L'*');
    const String number = PartBehind(country, L'*');
    if (IsDigit(number[0])) {
        const uint32_t lcid = Number(number);
        AddNumberAliases(facts, lcid, country);
        facts.countryToLcid[country] = lcid;
    } else {
        country = name;
    }
    facts.aliasToCountry[country] = country;
    facts.aliasToCountry[name] = country;
    facts.countryToEnglishName[country] = name;
    for (const String& pair : PartBehind(row, L':').Split(L';')) AddPair(facts, country, pair);
}

void AddAllDetails(scCountryFacts& facts) {
    for (uint32_t id = kFirstDetails; id <= kLastDetails; ++id) {
        const String row = CountryResource(id);
        if (row == kEndOfRows) return;
        if (!row.IsEmpty()) AddDetails(facts, row);
    }
}

void AddCountryRows(scCountryFacts& facts) {
    const WCTextDict<String> first = FirstCountries(facts);
    ForEachCountryRow([&](const scCountryRow& row) {
        const String* found = first.find(row.englishName);
        if (!found) found = facts.aliasToCountry.find(row.englishName);
        const String country = found ? *found : row.englishName;
        if (!found) {
            facts.aliasToCountry[country] = country;
            facts.countryToEnglishName[country] = country;
        }
        AddMissing(facts.aliasToCountry, row.iso, country);
        AddMissing(facts.isoToName, row.iso, row.englishName);
        if (!row.car.IsEmpty()) AddMissing(facts.carToCountry, row.car, country);
        return true;
    });
}

} // namespace vxut
