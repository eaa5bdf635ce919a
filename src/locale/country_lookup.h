// Countries and languages by any text that names them.
#pragma once

#include "base/critical_section.h"
#include "locale/country_facts.h"

#include <cstdint>

namespace vxut {

// The kinds of host programs, which differ in how a country is looked up.
enum class HostKind { kRoute = 1, kOther = 2, kDesk = 3 };

// The kind of a program by the internal name in its version resource.
HostKind HostKindOf(const String& internalName);
// The kind of the program of this process. Determined once.
HostKind ProcessHostKind();

// The facts, collected at the first query. All functions may be called on any thread; nothing of a host is
// touched under the lock. Collecting is tried once: where it runs out of memory, the rest is missing.
class clsCountryLookup {
public:
    explicit clsCountryLookup(HostKind hostKind) : hostKind_(hostKind) {}

    // Those of the process.
    static clsCountryLookup& Instance();

    // The English names of all countries with an ISO code, joined with ";".
    String Names();

    // The facts about the country of a key. Unknown ones are empty or 0.
    uint32_t Locale(const IString& key) { return Fact(&scCountryFacts::countryToLcid, key); }
    uint32_t CallingCode(const IString& key) { return Fact(&scCountryFacts::countryToCallingCode, key); }
    uint32_t CodePage(const IString& key) { return Fact(&scCountryFacts::countryToAnsiCodePage, key); }
    String Iso(const IString& key) { return Fact(&scCountryFacts::countryToIso, key); }
    String Currency(const IString& key) { return Fact(&scCountryFacts::countryToCurrency, key); }
    String NativeName(const IString& key) { return Fact(&scCountryFacts::countryToNativeName, key); }
    String Name(const IString& key);

    // The number of a tag's locale, or of its primary language.
    uint32_t LanguageNumber(const IString& tag);

private:
    template <class Value>
    Value Fact(WCTextDict<Value> scCountryFacts::* dictionary, const IString& key);
    template <class Value>
    const Value* FactOf(WCTextDict<Value>& dictionary, const String& country);

    const String* CountryOf(const IString& key);
    String NameOfCarCode(const IString& key) const;
    void CollectOnce();
    void Collect();

    clsCriticalSection lock_;
    bool isCollected_ = false;
    scCountryFacts facts_;
    const HostKind hostKind_;
};

} // namespace vxut
