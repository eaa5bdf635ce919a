/** @file
 * The C library's wide-string and memory functions, for callers who want their parameters tested.
 *
 * Normally each function is the bare primitive: no pointer is tested, a null or wild one faults. While the
 * library's parameter-check switch is on, which only a debugging session does, each pointer is tested as in
 * validate.h; a bad one is reported by name on the debug channel, the destination stays as it is, and the
 * function gives its failure value.
 *
 * Lengths and counts are 16-bit units unless a parameter is named `bytes`. Source and destination may
 * overlap. A blank is the unit U+0020 and nothing else.
 *
 * @code
 *     wchar_t name[33];
 *     UtilStrncpy(name, longName, 33);
 *     UtilAtrim(name);
 * @endcode
 */
#ifndef VXUT_UTIL_STRINGS_H
#define VXUT_UTIL_STRINGS_H

#include "util/types.h"

/** Copies a text with its terminator.
 *
 *  @param dest    room for the units of `source` and the terminator.
 *  @return `dest`, or null on a failed test.
 */
VXUT_API wchar_t* UtilStrcpy(wchar_t* dest, const wchar_t* source);

/** Appends a text to the one in `dest`, which has room for both. Gives `dest`, or null on a failed test. */
VXUT_API wchar_t* UtilStrcat(wchar_t* dest, const wchar_t* source);

/** Copies at most `capacity - 1` units and always terminates.
 *
 *  @param capacity  units that `dest` has room for, the terminator included. With 0 nothing is written.
 *  @return `dest`, or null on a failed test.
 */
VXUT_API wchar_t* UtilStrncpy(wchar_t* dest, const wchar_t* source, uint32_t capacity);

/** Compares units as unsigned numbers. Gives -1, 0 or 1; 0 on a failed test too. */
VXUT_API int UtilStrcmp(const wchar_t* left, const wchar_t* right);

/** Compares without case, by the locale of the run-time library. Gives a number below, equal to or above 0; 0
 * on a failed test too. */
VXUT_API int UtilStricmp(const wchar_t* left, const wchar_t* right);

/** As UtilStrcmp(), of at most `count` units. */
VXUT_API int UtilStrncmp(const wchar_t* left, const wchar_t* right, uint32_t count);

/** As UtilStricmp(), of at most `count` units. */
VXUT_API int UtilStrnicmp(const wchar_t* left, const wchar_t* right, uint32_t count);

/** Gives the first place of a text in another; null if it is not there, or on a failed test. */
VXUT_API wchar_t* UtilStrstr(const wchar_t* text, const wchar_t* wanted);

/** Gives the first place of a unit; null if it is not there, or on a failed test. 0 finds the terminator. */
VXUT_API wchar_t* UtilStrchr(const wchar_t* text, wchar_t unit);

/** Gives the last place of a unit. As UtilStrchr(). */
VXUT_API wchar_t* UtilStrrchr(const wchar_t* text, wchar_t unit);

/** Gives the units before the terminator, 0 on a failed test. */
VXUT_API size_t UtilStrlen(const wchar_t* text);

/** Copies bytes.
 *
 *  @param dest  while the switch is on it is tested for twice the bytes.
 *  @return `dest`, or null on a failed test.
 */
VXUT_API void* UtilMemcpy(void* dest, const void* source, uint32_t bytes);

/** Fills bytes with the low 8 bits of `byte`. Gives `dest`, or null on a failed test. */
VXUT_API void* UtilMemset(void* dest, int byte, uint32_t bytes);

/** Removes leading blanks in place. */
VXUT_API void UtilLtrim(wchar_t* text);

/** Removes trailing blanks in place. */
VXUT_API void UtilRtrim(wchar_t* text);

/** Removes leading and trailing blanks in place. */
VXUT_API void UtilAtrim(wchar_t* text);

/** Deletes units of a text in place.
 *
 *  @param position     of the first unit to delete, from 1. One more than the length is the end, where there
 * is nothing to delete; with 0 or anything beyond the end nothing happens.
 *  @param deleteCount  units to delete; what goes beyond the end does not count.
 *  @param text         null or empty. Inserting is not available: with any other text the call raises an
 * access violation (0xC0000005, not continuable) and leaves `dest` as it is.
 *  @return `dest`, or null on a failed test.
 */
VXUT_API wchar_t* UtilStuff(wchar_t* dest, uint32_t position, uint32_t deleteCount, const wchar_t* text);

/** Makes a text a part of itself, in place.
 *
 *  @param start   of the first unit kept, from 1. 0 gives the empty text. A negative number names units in
 * front of the text, which must belong to the caller: -1 the second one before it.
 *  @param length  units to keep, at most those that `text` holds.
 *  @return `text`. Null, and `text` empty, if `start` without its sign is above the length; null on a failed
 * test.
 */
VXUT_API wchar_t* UtilSubstr(wchar_t* text, int32_t start, uint32_t length);

/** Formats a text. Formats are Microsoft's: `%s` is wide, `%hs` narrow.
 *
 *  @param dest      terminated in any case, unless `capacity` is 0.
 *  @param capacity  units that `dest` has room for, the terminator included.
 *  @return units written before the terminator, -1 if the text was cut or the format is bad, 0 on a failed
 * test.
 */
VXUT_API int UtilSafeSprintf(wchar_t* dest, uint32_t capacity, const wchar_t* format, ...);

#endif
