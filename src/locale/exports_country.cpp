#include "util/country.h"

#include "base/guard.h"
#include "locale/country_lookup.h"

using namespace vxut;

namespace {

// The type of a fact is that of its function.
struct Fact {
    uint32_t what;
    uint32_t (clsCountryLookup::*number)(const IString& key);
    String (clsCountryLookup::*text)(const IString& key);
};
constexpr Fact kFacts[] = {
    {UTIL_COUNTRY_LOCALE, &clsCountryLookup::Locale, nullptr},
    {UTIL_COUNTRY_CALLING_CODE, &clsCountryLookup::CallingCode, nullptr},
    {UTIL_COUNTRY_ISO, nullptr, &clsCountryLookup::Iso},
    {UTIL_COUNTRY_CURRENCY, nullptr, &clsCountryLookup::Currency},
    {UTIL_COUNTRY_CODE_PAGE, &clsCountryLookup::CodePage, nullptr},
    {UTIL_COUNTRY_NAME, nullptr, &clsCountryLookup::Name},
    {UTIL_COUNTRY_NATIVE_NAME, nullptr, &clsCountryLookup::NativeName},
};

void StoreNumber(uint32_t number, VARIANT& target) {
    target.lVal = static_cast<LONG>(number);
    target.vt = VT_I4;
}

bool StoreText(const String& text, VARIANT& target) {
    BSTR copy = nullptr;
    if (!text.ToBSTR(&copy)) return false;
    target.bstrVal = copy;
    target.vt = VT_BSTR;
    return true;
}

int32_t Store(const Fact& fact, const IString& key, VARIANT& target) {
    clsCountryLookup& countries = clsCountryLookup::Instance();
    if (fact.number) StoreNumber((countries.*fact.number)(key), target);
    return fact.number || StoreText((countries.*fact.text)(key), target) ? 0 : UTIL_COUNTRY_ERR_SELECTOR;
}

} // namespace

int32_t UtilLocGetCountryList(BSTR* list) {
    return Guarded<int32_t>(UTIL_COUNTRY_ERR_SELECTOR, [&] {
        return list && clsCountryLookup::Instance().Names().ToBSTR(list) ? 0 : UTIL_COUNTRY_ERR_SELECTOR;
    });
}

int32_t UtilLocGetCountryInfo(const wchar_t* key, uint32_t what, VARIANT* info) {
    return Guarded<int32_t>(UTIL_COUNTRY_ERR_SELECTOR, [&] {
        if (!info) return UTIL_COUNTRY_ERR_SELECTOR;
        VariantInit(info);
        for (const Fact& fact : kFacts)
            if (fact.what == what) return Store(fact, key, *info);
        return UTIL_COUNTRY_ERR_SELECTOR;
    });
}

int32_t UtilLocGetLanguageInfo(const wchar_t* tag, uint32_t what, VARIANT* info) {
    return Guarded<int32_t>(UTIL_COUNTRY_ERR_SELECTOR, [&] {
        if (!info) return UTIL_COUNTRY_ERR_SELECTOR;
        VariantInit(info);
        if (what != UTIL_LANGUAGE_LOCALE) return UTIL_COUNTRY_ERR_SELECTOR;
        StoreNumber(clsCountryLookup::Instance().LanguageNumber(tag), *info);
        return 0;
    });
}
