// The dictionaries of countries and languages. country_system.h and country_resource.h fill them in.
//
// A country's key is "NAME*NUMBER", its English name and the number of a locale, as in "Germany*1031". All
// texts that name a country lead to its key, and the facts are stored under that.
#pragma once

#include "containers/skip_list.h"
#include "text/string.h"

#include <cstdint>

namespace vxut {

template <class Value>
using WCTextDict = WCValSkipListDict<IString, Value>;

struct scCountryFacts {
    WCTextDict<String> aliasToCountry;
    WCTextDict<String> languageToCountry;
    WCTextDict<uint32_t> countryToLcid;
    WCTextDict<String> countryToIso;
    WCTextDict<String> countryToEnglishName;
    WCTextDict<String> countryToNativeName;
    WCTextDict<uint32_t> countryToCallingCode;
    WCTextDict<String> countryToCurrency;
    WCTextDict<uint32_t> countryToAnsiCodePage;
    WCTextDict<uint16_t> languageToLcid;

    // From the key of a locale that is not the one of its country to the key of the one that is.
    WCTextDict<String> localeToCountry;
    // The English names of the country rows.
    WCTextDict<String> isoToName;
    // Car codes. They become aliases last, as many of them are the ISO code of another country.
    WCTextDict<String> carToCountry;
};

// Adds an entry unless the key exists. Throws std::bad_alloc.
template <class Value>
void AddMissing(WCTextDict<Value>& dictionary, const IString& key, const Value& value) {
    if (!dictionary.contains(key)) dictionary[key] = value;
}

// The key of a country.
String CountryKey(const String& englishName, uint32_t lcid);

// The texts "1031" and "0x0407" of a locale become aliases.
void AddNumberAliases(scCountryFacts& facts, uint32_t lcid, const String& country);

// A tag and, if asked for, the part before its first "-" lead to a country.
void AddLanguage(scCountryFacts& facts, const String& tag, const String& country, bool withPrimary);

// The text before the first occurrence of a unit; the whole text if there is none.
String PartBefore(const String& text, wchar_t unit);

} // namespace vxut
