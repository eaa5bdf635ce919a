#include "locale/country_system.h"

#include "base/guard.h"
#include "base/identity.h"
#include "base/system_libraries.h"

#include <cwchar>

namespace vxut {
namespace {

// Where a country has several locales, the one of the largest group of its people or of its administration.
struct PreferredLocale {
    wchar_t iso[3];
    LCID lcid;
};
constexpr PreferredLocale kPreferredLocales[] = {
    {L"AZ", 1068}, {L"BA", 5146},  {L"BE", 2060},  {L"BO", 16394}, {L"CA", 4105},
    {L"CH", 2055}, {L"CL", 13322}, {L"EC", 12298}, {L"ES", 1034},  {L"FI", 1035},
    {L"GB", 2057}, {L"IE", 6153},  {L"IN", 1081},  {L"LU", 1134},  {L"MQ", 1036},
    {L"NO", 2068}, {L"NZ", 5129},  {L"PE", 10250}, {L"PH", 13321}, {L"RU", 1049},
    {L"SE", 1053}, {L"SP", 6170},  {L"SY", 1114},  {L"UZ", 1091},  {L"ZA", 7177},
};

constexpr LCTYPE kCountryIso = LOCALE_SISO3166CTRYNAME;
constexpr LCTYPE kLanguageIso = LOCALE_SISO639LANGNAME;
constexpr LCTYPE kEnglishCountry = LOCALE_SENGCOUNTRY;

// Locales that applications and users make have no number of their own; this one stands for all of them.
bool HasOwnNumber(LCID lcid) {
    return lcid != 0 && lcid != LOCALE_CUSTOM_UNSPECIFIED && lcid != LOCALE_INVARIANT;
}

// Whether it is the locale of the language's main country.
bool IsPrimarySublanguage(LCID lcid) { return (lcid & 0xFC00) == 0x400; }

// Empty if the locale has no such field.
String LocaleField(LCID lcid, LCTYPE type) {
    constexpr int kCapacity = 100;
    wchar_t text[kCapacity];
    return GetLocaleInfoW(lcid, type, text, kCapacity) > 0 ? String(text) : String();
}

uint32_t NumberField(LCID lcid, LCTYPE type) {
    return static_cast<uint32_t>(std::wcstoul(LocaleField(lcid, type).Text(), nullptr, 10));
}

void Add(LocaleSet& locales, LCID lcid) {
    if (HasOwnNumber(lcid)) locales.insert(lcid);
}

BOOL CALLBACK TakeName(LPWSTR name, DWORD, LPARAM locales) {
    return Guarded(FALSE, [&] {
        Add(*reinterpret_cast<LocaleSet*>(locales), Kernel32().LocaleNameToLCID(name, 0));
        return TRUE;
    });
}

// The system passes no parameter on to TakeNumber(). Guarded by the lock under which the facts are collected.
LocaleSet* collected = nullptr;

BOOL CALLBACK TakeNumber(LPWSTR hexadecimal) {
    return Guarded(FALSE, [&] {
        Add(*collected, static_cast<LCID>(std::wcstoul(hexadecimal, nullptr, 16)));
        return TRUE;
    });
}

// The locales of each country.
using CountryLocales = WCTextDict<LocaleSet>;

CountryLocales GroupByCountry(const LocaleSet& locales) {
    CountryLocales groups;
    for (const LCID lcid : locales) {
        const String iso = LocaleField(lcid, kCountryIso);
        if (!iso.IsEmpty()) groups[iso].insert(lcid);
    }
    return groups;
}

// The tag of a locale. Before Windows Vista locales had no names.
String LanguageTag(LCID lcid) {
    wchar_t name[LOCALE_NAME_MAX_LENGTH];
    auto& toName = Kernel32().LCIDToLocaleName;
    if (Identity().osVersion < kWindowsVista || !toName.IsAvailable())
        return LocaleField(lcid, kLanguageIso) + L"-" + LocaleField(lcid, kCountryIso);
    return toName(lcid, name, LOCALE_NAME_MAX_LENGTH, 0) > 0 ? String(name) : String();
}

class SystemFacts {
public:
    SystemFacts(scCountryFacts& facts, const WCTextDict<String>& carCodes)
        : facts_(facts), carCodes_(carCodes) {}

    // Returns the key of the country; empty if it has no name.
    String AddCountry(const IString& iso, LCID lcid) {
        const String name = LocaleField(lcid, kEnglishCountry);
        if (name.IsEmpty()) return String();
        const String country = CountryKey(name, lcid);
        AddAlias(name, country);
        facts_.countryToEnglishName[country] = name;
        if (const String* const car = carCodes_.find(iso)) AddMissing(facts_.carToCountry, *car, country);
        AddCallingCode(lcid, country);
        for (const LCTYPE type : {LCTYPE{LOCALE_SABBREVCTRYNAME}, kCountryIso, LCTYPE{LOCALE_SCOUNTRY}})
            AddAlias(LocaleField(lcid, type), country);
        AddText(facts_.countryToNativeName, country, LocaleField(lcid, LOCALE_SNATIVECTRYNAME));
        AddAlias(LocaleField(lcid, LOCALE_SNATIVECTRYNAME), country);
        AddText(facts_.countryToCurrency, country, LocaleField(lcid, LOCALE_SCURRENCY));
        facts_.countryToIso[country] = iso;
        return country;
    }

    void AddLocale(LCID lcid) {
        const String name = LocaleField(lcid, kEnglishCountry);
        if (name.IsEmpty()) return;
        const String own = CountryKey(name, lcid);
        AddAlias(own, own);
        AddNumberAliases(facts_, lcid, own);
        facts_.countryToLcid[own] = lcid;
        AddTag(LanguageTag(lcid), lcid, own);
        facts_.countryToAnsiCodePage[own] = NumberField(lcid, LOCALE_IDEFAULTANSICODEPAGE);
    }

private:
    void AddAlias(const String& alias, const String& country) {
        if (!alias.IsEmpty()) facts_.aliasToCountry[alias] = country;
    }

    static void AddText(WCTextDict<String>& dictionary, const String& country, const String& value) {
        if (!value.IsEmpty()) dictionary[country] = value;
    }

    void AddCallingCode(LCID lcid, const String& country) {
        if (const uint32_t code = NumberField(lcid, LOCALE_ICOUNTRY))
            facts_.countryToCallingCode[country] = code;
    }

    void AddTag(const String& tag, LCID lcid, const String& country) {
        if (tag.IsEmpty()) return;
        AddOneTag(tag, lcid, country);
        // The tags "sr-Latn-RS" and "sr-RS" name the same country.
        String plain = tag;
        if (plain.ReplaceText(L"Latn-", String()) > 0) AddOneTag(plain, lcid, country);
    }

    void AddOneTag(const String& tag, LCID lcid, const String& country) {
        AddLanguage(facts_, tag, country, IsPrimarySublanguage(lcid));
        facts_.languageToLcid[tag] = static_cast<uint16_t>(lcid);
        if (IsPrimarySublanguage(lcid))
            facts_.languageToLcid[PartBefore(tag, L'-')] = static_cast<uint16_t>(lcid);
    }

    scCountryFacts& facts_;
    const WCTextDict<String>& carCodes_;
};

} // namespace

LocaleSet SystemLocalesByNumber() {
    LocaleSet locales;
    collected = &locales;
    for (int attempt = 0; attempt < 2 && locales.isEmpty(); ++attempt)
        EnumSystemLocalesW(TakeNumber, LCID_SUPPORTED);
    collected = nullptr;
    return locales;
}

LocaleSet SystemLocales() {
    auto& enumerate = Kernel32().EnumSystemLocalesEx;
    if (!enumerate.IsAvailable() || !Kernel32().LocaleNameToLCID.IsAvailable())
        return SystemLocalesByNumber();
    LocaleSet locales;
    enumerate(TakeName, LOCALE_ALL, reinterpret_cast<LPARAM>(&locales), nullptr);
    return locales;
}

LCID PickLocale(const IString& iso, const LocaleSet& locales) {
    const LCID first = *locales.begin();
    if (locales.entries() == 1) return first;
    for (const PreferredLocale& preferred : kPreferredLocales)
        if (iso == preferred.iso) return preferred.lcid;
    for (const LCID lcid : locales)
        if (IsPrimarySublanguage(lcid)) return lcid;
    return first;
}

void AddSystemLocales(scCountryFacts& facts, const LocaleSet& locales, const WCTextDict<String>& carCodes) {
    SystemFacts system(facts, carCodes);
    for (const auto& group : GroupByCountry(locales)) {
        const String country = system.AddCountry(group.key(), PickLocale(group.key(), group.value));
        if (country.IsEmpty()) continue;
        for (const LCID lcid : group.value) {
            const String own = CountryKey(LocaleField(lcid, kEnglishCountry), lcid);
            if (!(own == country)) facts.localeToCountry[own] = country;
        }
    }
    for (const LCID lcid : locales) system.AddLocale(lcid);
}

} // namespace vxut
