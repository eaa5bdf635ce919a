/** @file
 * The wide-string and memory functions of the C library, for callers who want their parameters tested.
 *
 * Normally each function is the bare primitive: no pointer is tested, and a null or invalid one faults. While
 * the parameter-check switch of the library is on, which only a debugging session sets, each function tests
 * its pointers first, as validate.h describes: it tests what it is about to read and write. A bad pointer is
 * reported by name on the debug channel, and the function returns its failure value without touching the
 * destination. A null pointer passes the tests.
 *
 * Lengths and counts are in 16-bit units, unless a parameter is named `bytes`. Source and destination may
 * overlap. A blank is the unit U+0020 and nothing else. The functions take no locks and may be called from
 * any thread.
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
 *  @param dest  holds at least the units of `source` and the terminator.
 *  @return `dest`, or null on a failed test.
 */
VXUT_API wchar_t* UtilStrcpy(wchar_t* dest, const wchar_t* source);

/** Appends a text to the text in `dest`.
 *
 *  @param dest  holds at least the units of both texts and the terminator.
 *  @return `dest`, or null on a failed test.
 */
VXUT_API wchar_t* UtilStrcat(wchar_t* dest, const wchar_t* source);

/** Copies at most `capacity - 1` units and always terminates.
 *
 *  @param capacity  size of `dest` in units, including the terminator. With 0 nothing is written.
 *  @return `dest`, or null on a failed test.
 */
VXUT_API wchar_t* UtilStrncpy(wchar_t* dest, const wchar_t* source, uint32_t capacity);

/** Compares units as unsigned numbers. Returns -1, 0 or 1; 0 also on a failed test. */
VXUT_API int UtilStrcmp(const wchar_t* left, const wchar_t* right);

/** Compares without regard to case, by the locale of the run-time library. Returns a number below, equal to
 * or above 0; 0 also on a failed test. */
VXUT_API int UtilStricmp(const wchar_t* left, const wchar_t* right);

/** Compares at most `count` units, as UtilStrcmp() does. */
VXUT_API int UtilStrncmp(const wchar_t* left, const wchar_t* right, uint32_t count);

/** Compares at most `count` units, as UtilStricmp() does. */
VXUT_API int UtilStrnicmp(const wchar_t* left, const wchar_t* right, uint32_t count);

/** Returns the first occurrence of a text in another; null if there is none, or on a failed test. */
VXUT_API wchar_t* UtilStrstr(const wchar_t* text, const wchar_t* wanted);

/** Returns the first occurrence of a unit; null if there is none, or on a failed test. 0 finds the
 * terminator. */
VXUT_API wchar_t* UtilStrchr(const wchar_t* text, wchar_t unit);

/** Returns the last occurrence of a unit. Otherwise as UtilStrchr(). */
VXUT_API wchar_t* UtilStrrchr(const wchar_t* text, wchar_t unit);

/** Returns the number of units before the terminator; 0 on a failed test. */
VXUT_API size_t UtilStrlen(const wchar_t* text);

/** Copies bytes.
 *
 *  @param dest  while the switch is on, it is tested for twice the bytes.
 *  @return `dest`, or null on a failed test.
 */
VXUT_API void* UtilMemcpy(void* dest, const void* source, uint32_t bytes);

/** Fills bytes with the low 8 bits of `byte`. Returns `dest`, or null on a failed test. */
VXUT_API void* UtilMemset(void* dest, int byte, uint32_t bytes);

/** Removes leading blanks in place. */
VXUT_API void UtilLtrim(wchar_t* text);

/** Removes trailing blanks in place. */
VXUT_API void UtilRtrim(wchar_t* text);

/** Removes leading and trailing blanks in place. */
VXUT_API void UtilAtrim(wchar_t* text);

/** Deletes units of a text in place.
 *
 *  @param position     position of the first unit to delete, counted from 1. The length plus 1 is the end,
 * where nothing is deleted. With 0 or a position beyond the end the call does nothing.
 *  @param deleteCount  number of units to delete; it may exceed what follows the position.
 *  @param text         null or empty. Insertion is not available: with any other text the call raises an
 * access violation (0xC0000005, not continuable) and leaves `dest` unchanged.
 *  @return `dest`, or null on a failed test.
 */
VXUT_API wchar_t* UtilStuff(wchar_t* dest, uint32_t position, uint32_t deleteCount, const wchar_t* text);

/** Replaces a text by a part of itself, in place.
 *
 *  @param start   position of the first unit to keep, counted from 1. 0 makes the text empty. A negative
 * number is a position before the text, which must belong to the caller: -1 is the second unit before it.
 *  @param length  number of units to keep, at most those that `text` has.
 *  @return `text`. Null, with `text` empty, if the absolute value of `start` exceeds the length. Null on a
 * failed test.
 */
VXUT_API wchar_t* UtilSubstr(wchar_t* text, int32_t start, uint32_t length);

/** Formats a text. Formats are those of the Microsoft run-time: `%s` is wide, `%hs` is narrow.
 *
 *  @param dest      is terminated in every case, unless `capacity` is 0.
 *  @param capacity  size of `dest` in units, including the terminator.
 *  @return the number of units before the terminator, -1 if the text was truncated or the format is invalid,
 * 0 on a failed test.
 */
VXUT_API int UtilSafeSprintf(wchar_t* dest, uint32_t capacity, const wchar_t* format, ...);

#endif
