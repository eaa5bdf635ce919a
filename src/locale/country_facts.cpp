#include "locale/country_facts.h"

#include <cwchar>

namespace vxut {

String CountryKey(const String& englishName, uint32_t lcid) {
    String key;
    key.Format(L"%s*%u", englishName.Text(), lcid);
    return key;
}

void AddNumberAliases(scCountryFacts& facts, uint32_t lcid, const String& country) {
    String number;
    for (const wchar_t* const format : {L"%u", L"0x%04x"}) {
        number.Format(format, lcid);
        facts.aliasToCountry[number] = country;
    }
}

void AddLanguage(scCountryFacts& facts, const String& tag, const String& country, bool withPrimary) {
    facts.languageToCountry[tag] = country;
    if (withPrimary) facts.languageToCountry[PartBefore(tag, L'-')] = country;
}

String PartBefore(const String& text, wchar_t unit) {
    const wchar_t* const found = std::wcschr(text.Text(), unit);
    return found ? text.Left(found - text.Text()) : text;
}

} // namespace vxut
