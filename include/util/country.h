/** @file
 * Facts about countries and languages.
 *
 * A country is asked for by any text that names it, whatever its case: its ISO 3166 code of two or three
 * letters, its car code, its English or native name, a language tag, or the number of a locale in decimal or
 * as "0x0407". The facts are those of the system's locales; a table of the library fills gaps. Where a
 * country has several locales, one of them is chosen for it; the number, the tag and the key
 * ("Switzerland*4108") of another one lead to that one's own number and code page, and otherwise to the facts
 * of its country.
 *
 * The first query collects all facts, which takes some milliseconds. They do not change afterwards.
 *
 * @code
 *     VARIANT name;
 *     if (UtilLocGetCountryInfo(L"DE", UTIL_COUNTRY_NATIVE_NAME, &name) == 0) { // "Deutschland"
 *         ...
 *         VariantClear(&name);
 *     }
 * @endcode
 */
#ifndef VXUT_UTIL_COUNTRY_H
#define VXUT_UTIL_COUNTRY_H

#include "util/types.h"

#include <windows.h>
/* After windows.h, which it needs: */
#include <oaidl.h>

/** Result for an unknown selector. */
#define UTIL_COUNTRY_ERR_SELECTOR (-18)

/** What UtilLocGetCountryInfo() returns, and the type of the variant. */
enum {
    UTIL_COUNTRY_LOCALE = 0,       /**< VT_I4: the number of the locale (LCID) */
    UTIL_COUNTRY_CALLING_CODE = 1, /**< VT_I4: the telephone country code */
    UTIL_COUNTRY_ISO = 2,          /**< VT_BSTR: the ISO 3166 code, or two as in "CY/CYP" */
    UTIL_COUNTRY_CURRENCY = 4,     /**< VT_BSTR: currency signs or codes, separated by "/" */
    UTIL_COUNTRY_CODE_PAGE = 5,    /**< VT_I4: the ANSI code page; 0 for a locale without one */
    UTIL_COUNTRY_NAME = 6,         /**< VT_BSTR: the English name */
    UTIL_COUNTRY_NATIVE_NAME = 7   /**< VT_BSTR: the name in the country's language */
};

/** What UtilLocGetLanguageInfo() returns. */
enum {
    UTIL_LANGUAGE_LOCALE = 0 /**< VT_I4: the number of the locale, or of the primary language */
};

/** Lists the countries with an ISO code by their English names, separated by ";" and sorted. A country that
 * is known under several locales appears several times.
 *
 *  @param list  null or a BSTR, which is reallocated; the caller frees it with SysFreeString(). Unchanged if
 * memory is exhausted.
 *  @return 0; UTIL_COUNTRY_ERR_SELECTOR if list is null or memory is exhausted.
 */
VXUT_API int32_t UtilLocGetCountryList(BSTR* list);

/** Returns one fact about a country.
 *
 *  @param key   any text that names the country; null is an unknown one. In a host program whose version
 * resource has the internal name "VLMROUTE", language tags name no country, and the name is also found by
 * car codes that the table of countries does not have.
 *  @param what  UTIL_COUNTRY_*.
 *  @param info  receives the fact, which the caller frees with VariantClear(): 0 or an empty text for an
 * unknown country or fact. What it holds before is neither used nor freed. Empty after a failure.
 *  @return 0; UTIL_COUNTRY_ERR_SELECTOR if what is unknown, info is null or memory is exhausted.
 */
VXUT_API int32_t UtilLocGetCountryInfo(const wchar_t* key, uint32_t what, VARIANT* info);

/** Returns the number of a language.
 *
 *  @param tag   "de-DE" for the locale, 1031. "de", or a tag of an unknown country such as "de-XX", is the
 * primary language: 7. Null is an unknown tag.
 *  @param what  UTIL_LANGUAGE_LOCALE.
 *  @param info  receives the number, 0 for an unknown language; see UtilLocGetCountryInfo().
 *  @return 0; UTIL_COUNTRY_ERR_SELECTOR if what is unknown or info is null.
 */
VXUT_API int32_t UtilLocGetLanguageInfo(const wchar_t* tag, uint32_t what, VARIANT* info);

#endif
