#include "locale/country_lookup.h"

#include "locale/country_car_table.h"
#include "locale/country_resource.h"
#include "locale/country_system.h"
#include "trace/version_text.h"

namespace vxut {
namespace {

struct HostName {
    const wchar_t* internalName;
    HostKind kind;
};
constexpr HostName kHostNames[] = {{L"VLMROUTE", HostKind::kRoute}, {L"VLMDESK", HostKind::kDesk}};

constexpr uint16_t kPrimaryLanguage = 0x3FF;
constexpr int64_t kPrimaryTagUnits = 2;

} // namespace

HostKind HostKindOf(const String& internalName) {
    for (const HostName& host : kHostNames)
        if (IString(internalName) == host.internalName) return host.kind;
    return HostKind::kOther;
}

HostKind ProcessHostKind() {
    static const HostKind kind =
        HostKindOf(VersionStringOfModule(GetModuleHandleW(nullptr), L"InternalName"));
    return kind;
}

clsCountryLookup& clsCountryLookup::Instance() {
    static clsCountryLookup lookup(ProcessHostKind());
    return lookup;
}

// Set before the work begins: callers rely on a failure not being tried again.
void clsCountryLookup::CollectOnce() {
    if (isCollected_) return;
    isCollected_ = true;
    Collect();
}

// Later sources override earlier ones, but for the country rows and the car codes, which fill gaps.
void clsCountryLookup::Collect() {
    AddSystemLocales(facts_, SystemLocales(), CarCodes());
    AddAllDetails(facts_);
    AddCountryRows(facts_);
    for (const auto& entry : facts_.carToCountry) AddMissing(facts_.aliasToCountry, entry.key(), entry.value);
}

// Null if the key names no country.
const String* clsCountryLookup::CountryOf(const IString& key) {
    CollectOnce();
    const String* const country = facts_.aliasToCountry.find(key);
    if (country || hostKind_ == HostKind::kRoute) return country;
    return facts_.languageToCountry.find(key);
}

// A locale that was not picked for its country has the number and the code page of its own only.
template <class Value>
const Value* clsCountryLookup::FactOf(WCTextDict<Value>& dictionary, const String& country) {
    const Value* const own = dictionary.find(country);
    if (own) return own;
    const String* const other = facts_.localeToCountry.find(country);
    return other ? dictionary.find(*other) : nullptr;
}

template <class Value>
Value clsCountryLookup::Fact(WCTextDict<Value> scCountryFacts::* dictionary, const IString& key) {
    const clsCriticalSectionScope scope(lock_);
    const String* const country = CountryOf(key);
    const Value* const fact = country ? FactOf(facts_.*dictionary, *country) : nullptr;
    return fact ? *fact : Value();
}

template uint32_t clsCountryLookup::Fact(WCTextDict<uint32_t> scCountryFacts::*, const IString&);
template String clsCountryLookup::Fact(WCTextDict<String> scCountryFacts::*, const IString&);

String clsCountryLookup::Name(const IString& key) {
    const clsCriticalSectionScope scope(lock_);
    if (const String* const country = CountryOf(key)) {
        const String* const name = FactOf(facts_.countryToEnglishName, *country);
        return name ? *name : String();
    }
    const String* const name = facts_.isoToName.find(key);
    return name ? *name : NameOfCarCode(key);
}

String clsCountryLookup::NameOfCarCode(const IString& key) const {
    if (hostKind_ != HostKind::kRoute) return String();
    for (const scCarCode& row : CarCodeTable()) {
        const int order = key.CompareTo(Latin(row.code));
        if (order == 0) return Latin(row.name);
        if (order < 0) break; // the rows that follow come after the key too
    }
    return String();
}

String clsCountryLookup::Names() {
    const clsCriticalSectionScope scope(lock_);
    CollectOnce();
    String names;
    for (const auto& entry : facts_.countryToIso) {
        if (!names.IsEmpty()) names.Append(L';');
        names.Append(PartBefore(entry.key(), L'*'));
    }
    return names;
}

uint32_t clsCountryLookup::LanguageNumber(const IString& tag) {
    const clsCriticalSectionScope scope(lock_);
    CollectOnce();
    bool isPrimary = tag.Length() == kPrimaryTagUnits;
    const uint16_t* number = facts_.languageToLcid.find(tag);
    if (!number) {
        const String language = PartBefore(tag, L'-');
        if (language.Length() == tag.Length()) return 0;
        number = facts_.languageToLcid.find(language);
        isPrimary = true;
    }
    if (!number) return 0;
    return isPrimary ? *number & kPrimaryLanguage : *number;
}

} // namespace vxut
