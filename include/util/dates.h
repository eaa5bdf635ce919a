/** @file
 * Dates and times: as users of a locale write them, as digits, in the forms of other programs, and in the
 * user's time zone.
 *
 * Conventions:
 *  - A locale is an LCID. LOCALE_USER_DEFAULT (1024) asks the system at each call. What the system says about
 * the locale whose number GetUserDefaultLCID() returns is asked for once and kept, so changed settings are
 * seen by new processes only.
 *  - The empty time is a SYSTEMTIME that is 0 but for wDayOfWeek, which is 65535.
 *  - A compact date is "YYYYMMDD" or "YYYYMMDDhhmmss".
 *  - Texts are stripped of blanks at both ends before they are read.
 *  - Capacities are in units and include the terminator. A buffer may be null if its capacity is 0.
 *
 * The functions may be called from any thread, and do not wait for each other.
 *
 * @code
 *     SYSTEMTIME time;
 *     if (UtilLocSystemTimeFromLocaleString(1031, L"31.12.99 18:30", &time, UTIL_DATE_EXPAND_YEAR) == 0) {
 *         VARIANT text;
 *         VariantInit(&text);
 *         UtilLocLocaleStringFromSystemTime(1033, &time, &text); // "12/31/1999 6:30:00 PM"
 *         VariantClear(&text);
 *     }
 * @endcode
 */
#ifndef VXUT_UTIL_DATES_H
#define VXUT_UTIL_DATES_H

#include "util/types.h"

#include <windows.h>
/* After windows.h, which it needs: */
#include <oaidl.h>

/** Flags of the functions that read a date. */
#define UTIL_DATE_EXPAND_YEAR 0x01u      /**< years below 30 are 20xx, those from 30 to 99 are 19xx */
#define UTIL_DATE_NEEDS_ALL_FIELDS 0x02u /**< a date without day, month or year is a failure */

/** Result of UtilLocSystemTimeFromLocaleString() for a text that is no date. */
#define UTIL_DATE_ERR_FORMAT (-52)

/** Reads a date, a time or both, in the short form of a locale or in that of ISO 8601, which is read as year,
 * month, day in every locale. A time may have 12 hours with "AM" or "PM", or 24. A missing day, month or year
 * is that of today. A blank text is the current local time.
 *
 * A number by itself is the year, "3.5" is a day (or what comes first in the locale) and a year, "3.5." a day
 * and a month, and "12 AM" is 12 hours.
 *
 *  @param lcid    the locale.
 *  @param text    null counts as blank.
 *  @param target  receives the time; wDayOfWeek and wMilliseconds are 0. After a failure it has what was
 * read.
 *  @param flags   UTIL_DATE_*.
 *  @return 0; UTIL_DATE_ERR_FORMAT for another text, a date that does not exist (31 February), a missing
 * field with UTIL_DATE_NEEDS_ALL_FIELDS, or if memory is exhausted.
 */
VXUT_API int32_t UtilLocSystemTimeFromLocaleString(uint32_t lcid, const wchar_t* text, SYSTEMTIME* target,
                                                   uint32_t flags);

/** Writes a date in the short form of a locale, followed by a blank and the time unless that is midnight.
 * Dates before 1601 are written in the order and with the separators of the locale.
 *
 *  @param lcid    the locale.
 *  @param time    null for the current time. A date that cannot be written becomes that of today.
 *  @param target  receives a string (VT_BSTR). The caller initialises it before, with VariantInit(), and
 * clears it afterwards. If memory is exhausted it stays as it is.
 *  @return 0.
 */
VXUT_API int32_t UtilLocLocaleStringFromSystemTime(uint32_t lcid, const SYSTEMTIME* time, VARIANT* target);

/** Writes a compact date in the short form of the user's locale.
 *
 *  @param compact   digits; others count as 0. Null or blank makes an empty text.
 *  @param buffer    receives the text, cut to the buffer; empty on failure.
 *  @param capacity  of buffer. A text that is as long as the capacity loses its last unit.
 *  @return 1; 0 if the text is longer than the capacity.
 */
VXUT_API int UtilDateTimeToLocaleString(const wchar_t* compact, wchar_t* buffer, uint32_t capacity);

/** Reads a date in the short form of the user's locale, as UtilLocSystemTimeFromLocaleString() does, and
 * writes it as a compact date of 14 digits. A text of 8 or 14 digits is a compact date already, and is filled
 * up with zeros.
 *
 *  @param text      must not be padded with blanks if it is compact.
 *  @param buffer    receives the digits, cut to the buffer; empty on failure.
 *  @param capacity  of buffer; 15 is enough for all years of four digits.
 *  @param flags     UTIL_DATE_*.
 *  @return 1; 0 if the text is null or no date.
 */
VXUT_API int UtilDateTimeFromLocaleString(const wchar_t* text, wchar_t* buffer, uint32_t capacity,
                                          uint32_t flags);

/** Reads a date in one of the forms that programs write. They are tried in this order:
 *  1. up to 14 digits, "YYYYMMDDhhmmss" or less; nothing is checked and missing fields are 0;
 *  2. Internet messages, "Fri, 13 Nov 2026 16:30:00 +0100"; with a numeric zone the result is UTC, otherwise
 *     it is as written;
 *  3. ISO 8601, "2026-11-13T16:30:00+01:00"; the result is UTC. Without an offset, also with "Z", the text is
 *     local time;
 *  4. whatever the automation library reads as a date in the user's locale; the result is as written.
 *
 *  @param text    null or blank is the current local time.
 *  @param target  receives the time; the empty time if the text is in none of these forms.
 *  @return 0.
 */
VXUT_API int32_t UtilLocDateTimeToSYSTEMTIME(const wchar_t* text, SYSTEMTIME* target);

/** Converts a time between the user's time zone and UTC. A time that the system refuses becomes the empty
 * time.
 *
 *  @param time  is replaced by the result.
 *  @return 0; E_INVALIDARG (0x80070057) if time is null or its year is 0.
 */
VXUT_API int32_t UtilLocConvertLocalTimeToUTCTime(SYSTEMTIME* time);
VXUT_API int32_t UtilLocConvertUTCTimeToLocalTime(SYSTEMTIME* time);

/** Returns when daylight saving time begins and ends, by the present rules of the user's zone.
 *
 *  @param year   for which the rules are resolved.
 *  @param start  receives the begin in UTC; all zero in a zone without daylight saving time. This and end may
 * be null if they are not wanted.
 *  @param end    receives the end in UTC.
 *  @return 0.
 */
VXUT_API int32_t UtilLocGetDSTStartAndEndInUTC(uint16_t year, SYSTEMTIME* start, SYSTEMTIME* end);

#endif
