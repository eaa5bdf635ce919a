// The locales of the system, and what they add to the facts about countries.
#pragma once

#include "locale/country_facts.h"

#include <windows.h>

namespace vxut {

using LocaleSet = WCValSkipListSet<LCID>;

// The locales that have a number of their own, without the invariant one. Empty if the system fails.
LocaleSet SystemLocales();
// The same on systems that know locales by number only.
LocaleSet SystemLocalesByNumber();

// The locale of a country that stands for the country. iso is its ISO code, locales are all of it: not empty.
LCID PickLocale(const IString& iso, const LocaleSet& locales);

// Adds what the system knows. carCodes are those of the countries, by ISO code.
void AddSystemLocales(scCountryFacts& facts, const LocaleSet& locales, const WCTextDict<String>& carCodes);

} // namespace vxut
