// The string resources with countries, which scripts/country-tables makes, and what they add to the facts.
#pragma once

#include "locale/country_facts.h"

#include <cstdint>

namespace vxut {

// A row of the countries: "ISO=English name=car code". Missing fields are empty.
struct scCountryRow {
    IString iso;
    String englishName;
    String car;
};

scCountryRow ParseCountryRow(const String& row);

// The text of a string resource of the library; empty if there is none.
String CountryResource(uint32_t id);

// Calls visit(row) for the rows of the countries in their order until it returns false.
template <class Visit>
void ForEachCountryRow(Visit visit) {
    constexpr uint32_t kFirst = 101;
    for (uint32_t id = kFirst;; ++id) {
        const String row = CountryResource(id);
        if (row.Length() <= 1 || !visit(ParseCountryRow(row))) return;
    }
}

// Car codes by ISO code.
WCTextDict<String> CarCodes();

// Adds a detail row: "Name*LCID:Key=Value;Key=Value". It overrides what is there.
void AddDetails(scCountryFacts& facts, const String& row);

// Adds all detail rows.
void AddAllDetails(scCountryFacts& facts);

// Makes the country rows aliases of the countries that exist, and countries of the others. Replaces no alias.
void AddCountryRows(scCountryFacts& facts);

} // namespace vxut
