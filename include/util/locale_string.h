/** @file
 * Order and case of text in the user's locale.
 *
 * The comparisons follow the collation of the locale, which is not the order of the code units: "a" comes
 * before "B". They return -1, 0 or 1, as the first text comes before the second, is equal to it or comes
 * after it.
 *
 * @code
 *     wchar_t name[] = L"Österreich";
 *     UtilLocaleStrupr(name);
 *     if (UtilLocaleStricmp(name, L"österreich") == 0) ...
 * @endcode
 */
#ifndef VXUT_UTIL_LOCALE_STRING_H
#define VXUT_UTIL_LOCALE_STRING_H

#include "util/types.h"

/** Result of UtilLocaleStrcmp() and UtilLocaleStricmp() if the system cannot compare: a text is null. */
#define UTIL_LOCALE_ERR_COMPARE (-2)

/** Converts a text to upper case in place.
 *
 *  @param text  may be null; then the result is null.
 *  @return text.
 */
VXUT_API wchar_t* UtilLocaleStrupr(wchar_t* text);

/** Converts a text to lower case in place.
 *
 *  @param text  may be null; then the result is null.
 *  @return text.
 */
VXUT_API wchar_t* UtilLocaleStrlwr(wchar_t* text);

/** Compares two texts.
 *
 *  @return -1, 0 or 1; UTIL_LOCALE_ERR_COMPARE if a text is null.
 */
VXUT_API int UtilLocaleStrcmp(const wchar_t* first, const wchar_t* second);

/** Compares two texts without regard to case.
 *
 *  @return -1, 0 or 1; UTIL_LOCALE_ERR_COMPARE if a text is null.
 */
VXUT_API int UtilLocaleStricmp(const wchar_t* first, const wchar_t* second);

/** Compares the beginnings of two texts. Of two beginnings that are equal as far as both reach, the shorter
 *  one comes first: "ab" before "abc" with a count of 3. The two are equal with a count of 2.
 *
 *  @param first   both end at their terminators, also if the count is smaller: they are measured.
 *  @param second  see first.
 *  @param count   the number of units that are compared at most; UINT32_MAX compares whole texts of less
 * than 2^31 units.
 *  @return -1, 0 or 1; 0 if a text is null or the system cannot compare.
 */
VXUT_API int UtilLocaleStrncmp(const wchar_t* first, const wchar_t* second, uint32_t count);

/** Compares as UtilLocaleStrncmp() does, without regard to case. */
VXUT_API int UtilLocaleStrnicmp(const wchar_t* first, const wchar_t* second, uint32_t count);

#endif
