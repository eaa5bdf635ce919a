/** @file
 * The items of a profile as text. Typed values are in prof/typed.h.
 */
#ifndef VXUT_PROF_ITEM_H
#define VXUT_PROF_ITEM_H

#include "prof/codes.h"
#include "prof/types.h"

/** Adds an item at the end of its list, even beside one of the same name.
 *
 *  @param path   null for an empty name.
 *  @param value  null does nothing.
 */
VXUT_API void ProfAppendStringW(HPROF job, HPROFLIST list, const wchar_t* path, const wchar_t* value);
VXUT_API void ProfAppendStringA(HPROF job, HPROFLIST list, const char* path, const char* value);

/** Replaces the value of the first item of the name, or adds an item.
 *
 *  @param path   null does nothing.
 *  @param value  null does nothing.
 */
VXUT_API void ProfSetStringW(HPROF job, HPROFLIST list, const wchar_t* path, const wchar_t* value);
VXUT_API void ProfSetStringA(HPROF job, HPROFLIST list, const char* path, const char* value);

/** Copies an item's value to a buffer, cut to its capacity and terminated. Without such an item the buffer
 * gets the default. The null job leaves the buffer alone.
 *
 *  @param buffer        null or a capacity of 0: nothing is written.
 *  @param capacity      of the buffer, in units (bytes for the narrow form, which sets the last one to 0).
 *  @param defaultValue  null for the empty text. May be the buffer itself.
 *  @return the smaller of the value's length and capacity - 1, in units of the wide value, 0 without a
 * buffer, or PROF_ERR_NOT_FOUND.
 */
VXUT_API int32_t ProfGetStringW(HPROF job, HPROFLIST list, const wchar_t* path, wchar_t* buffer,
                                uint32_t capacity, const wchar_t* defaultValue);
VXUT_API int32_t ProfGetStringA(HPROF job, HPROFLIST list, const char* path, char* buffer, uint32_t capacity,
                                const char* defaultValue);

/** Gives the length of an item's value in wide units, or PROF_ERR_NOT_FOUND. */
VXUT_API int32_t ProfGetStringLengthW(HPROF job, HPROFLIST list, const wchar_t* path);
VXUT_API int32_t ProfGetStringLengthA(HPROF job, HPROFLIST list, const char* path);

/** Deletes all items of a path. Every list that matches a component is followed; lists of the name stay.
 *
 *  @param path  a leading "/" is an empty component, so that nothing matches. Null does nothing.
 */
VXUT_API void ProfDeleteItemW(HPROF job, HPROFLIST list, const wchar_t* path);
VXUT_API void ProfDeleteItemA(HPROF job, HPROFLIST list, const char* path);

#endif
